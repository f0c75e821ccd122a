/// <reference lib="esnext.disposable" />

/** A file: its path, its URL, or its path as bytes, such as a Buffer. */
export type Path = string | Uint8Array | { readonly href: string; readonly protocol: string };

/** A key and its data fields. The fields may be in arrays. */
export type Item = readonly [key: string, ...fields: (string | readonly string[])[]];

/**
 * Where a dictionary comes from: a source file, which may be a pipe; the bytes of a source; or
 * items from an array, a Map or a generator. Items are read, and bytes are copied, before the call
 * returns.
 */
export type Source = Path | { readonly bytes: Uint8Array } | Iterable<Item>;

/**
 * The library's names for what can be wrong. Later versions may add others.
 *
 * In any call: `bad-argument`, `no-memory`, `stopped`, `cannot-read`, `cannot-write`,
 * `text-too-long`. In images: `image-too-short`, `image-too-large`, `header`, `area`, `free-cell`,
 * `parent`, `label`, `base`, `feature`. In sources: `bad-separator`, `no-field`, `empty-record`,
 * `nul`, `record-too-long`, `unfinished`, `empty-key`, `bad-utf8`, `cr`, `bom`, `no-records`,
 * `not-text`, `same-file`, `field-mark`. In segmenters: `no-weight`, `bad-weight`.
 */
export type ErrorKind = string;

/** What is wrong, and where. */
export interface Problem {
  /** Why the system refused, such as `ENOENT`, where it did; else the same as `kind`. */
  readonly code: string;
  readonly kind: ErrorKind;
  /** After an error, nothing was done. After a warning, the work was done nevertheless. */
  readonly severity: 'error' | 'warning';
  /** The file that the problem concerns, if there is one. */
  readonly path?: string;
  /** The error number of the system, where it refused; negative, as in Node.js. */
  readonly errno?: number;
  /** The number of the record or the item at fault, from 1, where there is one. */
  readonly line?: number;
  /** The byte at fault in the record, from 1, where there is one. */
  readonly column?: number;
  /** The cell of the image at fault, where there is one. */
  readonly cell?: number;
  /** The byte of the image at fault, from 0, where there is one. */
  readonly offset?: number;
  /** What is wrong and what to do about it. */
  readonly text: string;
  /** All of that in one line. */
  readonly message: string;
}

/** What the library refused to do. */
export class DictionaryError extends Error implements Problem {
  protected constructor();
  readonly code: string;
  readonly kind: ErrorKind;
  readonly severity: 'error' | 'warning';
  readonly path?: string;
  readonly errno?: number;
  readonly line?: number;
  readonly column?: number;
  readonly cell?: number;
  readonly offset?: number;
  readonly text: string;
}

/** A build that failed and made no image. The members describe the first error. */
export class BuildError extends DictionaryError {
  private constructor();
  /** How many problems were found. */
  readonly problemCount: number;
  /** The first problems, up to the limit, in the order of the source. */
  readonly problems: readonly Problem[];
}

export interface BuildProgress {
  /** The stages come in this order. */
  readonly stage: 'read' | 'place' | 'write';
  /** Bytes or items read, keys placed, or bytes written. */
  readonly done: number;
  /** How many there are; 0 while that is not known. */
  readonly total: number;
}

export interface BuildOptions {
  /**
   * Separates the fields of a record; a tab by default. In both separators, `\ddd` and `\udddd`,
   * with three and four decimal digits, are the byte of that value. Items have no separators.
   */
  readonly fieldSeparator?: string;
  /** Ends a record; a newline by default. */
  readonly recordSeparator?: string;
  /**
   * Turns four errors into warnings: an empty key, illegal UTF-8 in a key, a carriage return at
   * the end of a line, and a byte-order mark.
   */
  readonly lenient?: boolean;
  /** Drops a carriage return at the end of a line and a byte-order mark. */
  readonly fromWindows?: boolean;
  /** Makes an empty image from a source without records. */
  readonly allowEmpty?: boolean;
  /** Folds case and width, in the keys and in whatever is looked up. */
  readonly folded?: boolean;
  /** How many problems are reported at most; 100 by default. */
  readonly problemLimit?: number;
  /** Called now and then. The build stops soon after it returns false or throws. */
  readonly onProgress?: (progress: BuildProgress) => boolean | void;
  /** Stops the build, whose promise rejects with the signal's reason. */
  readonly signal?: AbortSignal;
}

export interface BuildReport {
  /** Records read, including those with problems. */
  readonly records: number;
  /** Distinct keys in the image; 0 if no image was made. */
  readonly keys: number;
  /** The size of the image, in bytes; 0 if no image was made. */
  readonly imageBytes: number;
  /** How many problems were found. */
  readonly problemCount: number;
  /** The first problems, up to the limit, in the order of the source. */
  readonly problems: readonly Problem[];
}

export interface OpenOptions {
  /**
   * Keeps a private copy, so that the file may change. By default the file is mapped, and all
   * processes that map it share its pages. A mapped file must not change while it is open, but
   * another file may take its place.
   */
  readonly copy?: boolean;
}

/** The fields of the first record of a data text. */
export function fields(data: string | undefined): string[];
/**
 * The fields of each record of a data text. A key that occurred more than once has several records.
 */
export function records(data: string | undefined): string[][];

/** A key found in a text. */
export class Match {
  private constructor();
  /** Where the key begins in the text, in UTF-16 units as `String.prototype.slice` counts them. */
  readonly start: number;
  /** Where the key ends, exclusive: `text.slice(start, end)` is the key. */
  readonly end: number;
  /** The key as the text has it. */
  readonly key: string;
  /** The key's data text: its fields, each followed by a tab. */
  readonly data: string;
  /** The number of the image in a set, else 0. */
  readonly image: number;
  /** What the function `fields` returns for the data. */
  get fields(): string[];
  /** What the function `records` returns for the data. */
  get records(): string[][];
}

export interface Description {
  readonly keys: number;
  /** The size of the image, in bytes. */
  readonly imageBytes: number;
  /** The cells of the double array. */
  readonly cells: number;
  /** The size of the data texts with their lengths, in bytes. */
  readonly featureBytes: number;
  /** Whether keys and texts are folded. */
  readonly folded: boolean;
}

export interface WordOptions {
  /** A match neither begins nor ends inside a word. */
  readonly wholeWords?: boolean;
}

export interface FindOptions extends WordOptions {
  /** In a set, a key of several images is found in each of them, not only in the last. */
  readonly everyImage?: boolean;
}

export interface PieceOptions extends WordOptions {
  /** A run of ASCII letters and digits that no key covers is one piece. */
  readonly joinedRuns?: boolean;
}

export interface ColumnOptions extends FindOptions {
  /** Searches as `findAll`, the default, `findLongest`, `findPrefixes` or `segment` does. */
  readonly mode?: 'all' | 'longest' | 'prefixes' | 'segment';
}

/** The matches of many texts. Each column has one number per match. */
export interface Columns {
  /** The number of the text, from 0. */
  readonly text: Uint32Array;
  readonly start: Uint32Array;
  readonly end: Uint32Array;
  /** The number of the data text, for `dataAt`. */
  readonly dataNumber: Uint32Array;
  /** The number of the image in a set, else 0. */
  readonly image: Uint32Array;
}

export interface ReplaceOptions extends WordOptions {
  /** The number of the data field that replaces a key, from 1; 1 by default. */
  readonly field?: number;
  /** What separates alternatives in the field. The first one is taken. */
  readonly alternatives?: string;
  /** Removes a key whose field is missing or empty. By default such a key stays. */
  readonly removeEmpty?: boolean;
}

/** A stretch of a text that was replaced, and what it became in the result. */
export interface Edit {
  readonly start: number;
  readonly end: number;
  readonly resultStart: number;
  readonly resultEnd: number;
}

export interface Replacement {
  readonly text: string;
  readonly edits: readonly Edit[];
}

/**
 * Cuts texts into keys. After `close`, every call but `close` throws an error with the code
 * `closed`.
 *
 * The Async variants work on Node.js's thread pool and reject where the others throw. `close` does
 * not disturb one that is under way. The Each variants take many texts. An unpaired surrogate is in
 * no key and is passed over.
 */
declare abstract class Segmenting implements Disposable {
  /** The keys into which a text is cut, one after the other. */
  segment(text: string, options?: WordOptions): Match[];
  segmentAsync(text: string, options?: WordOptions): Promise<Match[]>;
  segmentEach(texts: Iterable<string>, options?: WordOptions): Match[][];
  segmentEachAsync(texts: Iterable<string>, options?: WordOptions): Promise<Match[][]>;

  /** The whole text in pieces: the keys, and each character that is in none of them. */
  words(text: string, options?: PieceOptions): string[];
  wordsAsync(text: string, options?: PieceOptions): Promise<string[]>;
  wordsEach(texts: Iterable<string>, options?: PieceOptions): string[][];
  wordsEachAsync(texts: Iterable<string>, options?: PieceOptions): Promise<string[][]>;

  /** The text with the keys of its segmentation replaced by a data field. The rest stays. */
  replace(text: string, options?: ReplaceOptions): string;
  replaceAsync(text: string, options?: ReplaceOptions): Promise<string>;
  replaceEach(texts: Iterable<string>, options?: ReplaceOptions): string[];
  replaceEachAsync(texts: Iterable<string>, options?: ReplaceOptions): Promise<string[]>;

  /** The same, with a list of what was replaced and where. */
  replaceWithEdits(text: string, options?: ReplaceOptions): Replacement;
  replaceWithEditsAsync(text: string, options?: ReplaceOptions): Promise<Replacement>;

  /** Releases the image, once the searches that are under way are done. */
  close(): void;
  [Symbol.dispose](): void;
}

/**
 * One image or several, which can be used like a read-only Map of keys to data texts. The keys come
 * in the order of their code points. `close` does not disturb an iterator that has begun.
 *
 * A text is cut into segments like this: the longest key at the first position that has one, then
 * the same after it, and so on.
 */
declare abstract class Searchable extends Segmenting implements Iterable<[string, string]> {
  /**
   * How many keys there are. In a dictionary, the first call counts them, in one pass over the
   * image. In a set, each call goes through all keys.
   */
  readonly size: number;
  /** The data text of `key`, or undefined if there is no such key. */
  get(key: string): string | undefined;
  /** The same for many keys, in less time than one call for each. */
  getEach(keys: Iterable<string>): (string | undefined)[];
  /** Whether `key` as a whole is a key. */
  has(key: string): boolean;
  /**
   * The keys that begin with `prefix`. The first listing of an image makes an index of its keys,
   * which takes a moment, and memory of about 7 to 10 bytes per cell.
   */
  keys(prefix?: string): IterableIterator<string>;
  /** The data texts of the keys that begin with `prefix`. */
  values(prefix?: string): IterableIterator<string>;
  /** The keys that begin with `prefix`, with their data texts. */
  entries(prefix?: string): IterableIterator<[string, string]>;
  [Symbol.iterator](): IterableIterator<[string, string]>;
  forEach<Self = undefined>(
    callback: (this: Self, data: string, key: string, dictionary: this) => void, self?: Self): void;

  /** Whether any key is in the text. Stops at the first one. */
  test(text: string, options?: WordOptions): boolean;

  /** Every key at every position, by start, shortest first. */
  findAll(text: string, options?: FindOptions): Match[];
  findAllAsync(text: string, options?: FindOptions): Promise<Match[]>;
  findAllEach(texts: Iterable<string>, options?: FindOptions): Match[][];
  findAllEachAsync(texts: Iterable<string>, options?: FindOptions): Promise<Match[][]>;

  /** The longest key at every position. */
  findLongest(text: string, options?: FindOptions): Match[];
  findLongestAsync(text: string, options?: FindOptions): Promise<Match[]>;
  findLongestEach(texts: Iterable<string>, options?: FindOptions): Match[][];
  findLongestEachAsync(texts: Iterable<string>, options?: FindOptions): Promise<Match[][]>;

  /** Every key that the text begins with, shortest first. */
  findPrefixes(text: string, options?: FindOptions): Match[];
  findPrefixesAsync(text: string, options?: FindOptions): Promise<Match[]>;
  findPrefixesEach(texts: Iterable<string>, options?: FindOptions): Match[][];
  findPrefixesEachAsync(texts: Iterable<string>, options?: FindOptions): Promise<Match[][]>;

  /** The matches of many texts as typed arrays over the library's memory, without a copy. */
  findColumns(texts: Iterable<string>, options?: ColumnOptions): Columns;
  findColumnsAsync(texts: Iterable<string>, options?: ColumnOptions): Promise<Columns>;
  /** The data text with that number in that image; undefined if there is none. */
  dataAt(dataNumber: number, image?: number): string | undefined;

  /** For a set, the sums: a key of several dictionaries counts in each. */
  describe(): Description;
}

/** An open image. */
export class Dictionary extends Searchable {
  private constructor();

  /**
   * Builds the image file `image`, on the thread pool. At every moment, that name has either the
   * old file or the complete new one. Rejects with a BuildError.
   */
  static build(source: Source, image: Path, options?: BuildOptions): Promise<BuildReport>;
  /** Builds an image in memory. */
  static buildBytes(source: Source, options?: BuildOptions): Promise<Uint8Array>;
  /** Reports what a build would report, in little memory, and builds nothing. */
  static check(source: Source, options?: BuildOptions): Promise<BuildReport>;
  /** Builds an image in memory and opens it. */
  static of(source: Source, options?: BuildOptions): Promise<Dictionary>;

  /**
   * Verifies and opens an image file, in one pass over it. An unchanged file that this process
   * already has open is not verified again. Throws a DictionaryError.
   */
  static open(path: Path, options?: OpenOptions): Dictionary;
  static openAsync(path: Path, options?: OpenOptions): Promise<Dictionary>;
  /** Verifies and opens a copy of an image in memory. */
  static fromBytes(bytes: Uint8Array): Dictionary;
  static fromBytesAsync(bytes: Uint8Array): Promise<Dictionary>;

  /** A copy of the image's bytes, which `fromBytes` takes in a worker, too. */
  toBytes(): Uint8Array;
}

/**
 * Up to 64 dictionaries that are searched as one. Where the same stretch of a text is a key of
 * several, the last of them wins. They may be closed before the set.
 */
export class DictionarySet extends Searchable {
  constructor(dictionaries: Iterable<Dictionary>);
}

/** How the weights of keys are read from a data field of a key's first record, counted from 1. */
export type SegmenterOptions =
  /**
   * The field has counts. A key costs log(total) - log(count), where total is the sum of all
   * counts. A character where no key begins has the count 1.
   */
  | { readonly countField: number }
  /** The field has costs. A character where no key begins costs `unknownCost`. */
  | { readonly costField: number; readonly unknownCost: number };

/**
 * Cuts texts into keys and unknown characters with the least total cost. Of several ways that cost
 * the same, it takes the one whose first word is longer. It still works when its dictionary is
 * closed.
 */
export class Segmenter extends Segmenting {
  /** Throws a DictionaryError if a key has no weight; the error names the key. */
  constructor(dictionary: Dictionary | DictionarySet, options: SegmenterOptions);
}

/** The version of the library inside. */
export const version: string;

export {};
