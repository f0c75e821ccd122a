/// <reference lib="esnext.disposable" />

/** A file: its path, its URL, or its path in bytes, as a Buffer has it. */
export type Path = string | Uint8Array | { readonly href: string; readonly protocol: string };

/** A key and its data fields, which may come as an array. */
export type Item = readonly [key: string, ...fields: (string | readonly string[])[]];

/**
 * Where a dictionary comes from: a source file, which may be a pipe; the bytes of a source; or
 * items, as an array, a Map or a generator has them. Items are read, and bytes are copied, before
 * the call returns.
 */
export type Source = Path | { readonly bytes: Uint8Array } | Iterable<Item>;

/**
 * The library's names of what can be wrong. Other names may be added.
 *
 * Of any call: `bad-argument`, `no-memory`, `stopped`, `cannot-read`, `cannot-write`,
 * `text-too-long`. Of images: `image-too-short`, `image-too-large`, `header`, `area`, `free-cell`,
 * `parent`, `label`, `base`, `feature`. Of sources: `bad-separator`, `no-field`, `empty-record`,
 * `nul`, `record-too-long`, `unfinished`, `empty-key`, `bad-utf8`, `cr`, `bom`, `no-records`,
 * `not-text`, `same-file`, `field-mark`. Of segmenters: `no-weight`, `bad-weight`.
 */
export type ErrorKind = string;

/** What is wrong, and where. */
export interface Problem {
  /** Why the system refused, as `ENOENT`, where it did; else the same as `kind`. */
  readonly code: string;
  readonly kind: ErrorKind;
  /** After an error nothing was done; a warning changes nothing. */
  readonly severity: 'error' | 'warning';
  /** The file that it concerns, unless it concerns none. */
  readonly path?: string;
  /** Of the system, where it refused; negative, as Node.js has it. */
  readonly errno?: number;
  /** The number of the record or the item, from 1, where one is meant. */
  readonly line?: number;
  /** The byte in the record, from 1, where one is meant. */
  readonly column?: number;
  /** The cell of the image at fault, where one is. */
  readonly cell?: number;
  /** The byte of the image at fault, where one is. */
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

/** A source of which no image was made; it is its first error. */
export class BuildError extends DictionaryError {
  private constructor();
  /** All problems that were found. */
  readonly problemCount: number;
  /** The first of them, in the order of the source, up to the limit. */
  readonly problems: readonly Problem[];
}

export interface BuildProgress {
  /** The stages come in this order. */
  readonly stage: 'read' | 'place' | 'write';
  /** Bytes or items that are read, keys that are placed, or bytes that are written. */
  readonly done: number;
  /** 0 where it is not known yet. */
  readonly total: number;
}

export interface BuildOptions {
  /**
   * Separates the fields of a record; a tab by default. In both separators `\ddd` and `\udddd`,
   * written with three and four decimal digits, are the byte of that value. Items have none.
   */
  readonly fieldSeparator?: string;
  /** Ends a record; a newline by default. */
  readonly recordSeparator?: string;
  /**
   * Makes warnings of an empty key, illegal UTF-8 in a key, a carriage return at the end of a line
   * and a byte-order mark.
   */
  readonly lenient?: boolean;
  /** A carriage return at the end of a line and a byte-order mark are no data. */
  readonly fromWindows?: boolean;
  /** A source without records makes an empty image. */
  readonly allowEmpty?: boolean;
  /** Folds case and width, in the keys and in whatever is looked up. */
  readonly folded?: boolean;
  /** How many problems are reported; 100 by default. */
  readonly problemLimit?: number;
  /** Called now and then. The build stops soon after it returns false or throws. */
  readonly onProgress?: (progress: BuildProgress) => boolean | void;
  /** Stops the build, which rejects with the signal's reason. */
  readonly signal?: AbortSignal;
}

export interface BuildReport {
  /** Records read, those with problems included. */
  readonly records: number;
  /** Distinct keys in the image; 0 when none is made. */
  readonly keys: number;
  /** The size of the image, in bytes; 0 when none is made. */
  readonly imageBytes: number;
  /** All problems that were found. */
  readonly problemCount: number;
  /** The first of them, in the order of the source, up to the limit. */
  readonly problems: readonly Problem[];
}

export interface OpenOptions {
  /**
   * Keeps a private copy, whatever becomes of the file. By default the file's pages are mapped and
   * shared with all processes that do so, and the file must not change while it is open; to put
   * another file in its place is no change.
   */
  readonly copy?: boolean;
}

/** The fields of the first record of a data text. */
export function fields(data: string | undefined): string[];
/** The fields of each record of a data text: a key that occurred more than once has several. */
export function records(data: string | undefined): string[][];

/** A key found in a text. */
export class Match {
  private constructor();
  /** Where the key begins in the text, in UTF-16 units as `String.prototype.slice` counts them. */
  readonly start: number;
  /** Where it ends, exclusive: `text.slice(start, end)` is the key. */
  readonly end: number;
  /** The key as it is in the text. */
  readonly key: string;
  /** The key's data text: its fields, each followed by a tab. */
  readonly data: string;
  /** The number of the image in a set, else 0. */
  readonly image: number;
  /** As the function `fields` has them. */
  get fields(): string[];
  /** As the function `records` has them. */
  get records(): string[][];
}

export interface Description {
  readonly keys: number;
  /** The size of the image. */
  readonly imageBytes: number;
  /** Of the double array. */
  readonly cells: number;
  /** The size of the data texts with their lengths. */
  readonly featureBytes: number;
  /** Whether keys and texts are folded. */
  readonly folded: boolean;
}

export interface WordOptions {
  /** A match neither begins nor ends inside a word. */
  readonly wholeWords?: boolean;
}

export interface FindOptions extends WordOptions {
  /** In a set, a key of several images is found in each, and not only in the last of them. */
  readonly everyImage?: boolean;
}

export interface PieceOptions extends WordOptions {
  /** A run of ASCII letters and digits that no key covers is one piece. */
  readonly joinedRuns?: boolean;
}

export interface ColumnOptions extends FindOptions {
  /** As `findAll`, which is the default, `findLongest`, `findPrefixes` and `segment` search. */
  readonly mode?: 'all' | 'longest' | 'prefixes' | 'segment';
}

/** The matches of many texts, with one number per match in each column. */
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
  /** The number of the data field that replaces a key, from 1, which is the default. */
  readonly field?: number;
  /** What separates alternatives in the field, of which the first one counts. */
  readonly alternatives?: string;
  /** A key with an empty field, or without it, is removed. By default it stays. */
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
 * Cuts texts into keys. Once it is closed, every call but `close` throws an error with the code
 * `closed`.
 *
 * The Async variants work on Node.js's thread pool and reject where the others throw; one that is
 * under way is not disturbed by `close`. The Each variants take many texts. An unpaired surrogate
 * is passed over; no key holds one.
 */
declare abstract class Segmenting implements Disposable {
  /** The keys into which a text is cut, one after the other. */
  segment(text: string, options?: WordOptions): Match[];
  segmentAsync(text: string, options?: WordOptions): Promise<Match[]>;
  segmentEach(texts: Iterable<string>, options?: WordOptions): Match[][];
  segmentEachAsync(texts: Iterable<string>, options?: WordOptions): Promise<Match[][]>;

  /** The whole text in pieces: keys, and each character that is in none. */
  words(text: string, options?: PieceOptions): string[];
  wordsAsync(text: string, options?: PieceOptions): Promise<string[]>;
  wordsEach(texts: Iterable<string>, options?: PieceOptions): string[][];
  wordsEachAsync(texts: Iterable<string>, options?: PieceOptions): Promise<string[][]>;

  /** The text with the keys of its segmentation replaced by a data field. All else stays. */
  replace(text: string, options?: ReplaceOptions): string;
  replaceAsync(text: string, options?: ReplaceOptions): Promise<string>;
  replaceEach(texts: Iterable<string>, options?: ReplaceOptions): string[];
  replaceEachAsync(texts: Iterable<string>, options?: ReplaceOptions): Promise<string[]>;

  /** The same, and where. */
  replaceWithEdits(text: string, options?: ReplaceOptions): Replacement;
  replaceWithEditsAsync(text: string, options?: ReplaceOptions): Promise<Replacement>;

  /** Releases the image, at the latest when the last search that is under way ends. */
  close(): void;
  [Symbol.dispose](): void;
}

/**
 * One image or several, to be used like a read-only Map of keys to data texts. The keys come in the
 * order of their code points; `close` does not disturb their iterators.
 *
 * Segments are the longest key at the first position that has one, then the same after it, and so
 * on.
 */
declare abstract class Searchable extends Segmenting implements Iterable<[string, string]> {
  /**
   * How many keys there are. Counting those of a dictionary takes one pass over its image, once,
   * and those of a set goes through all of them.
   */
  readonly size: number;
  /** The data text of `key`, or undefined when it is no key. */
  get(key: string): string | undefined;
  /** The same for many keys, which takes less time than one call for each. */
  getEach(keys: Iterable<string>): (string | undefined)[];
  /** Whether `key`, the whole of it, is a key. */
  has(key: string): boolean;
  /**
   * The keys that begin with `prefix`. The first such call of an image makes an index of its keys,
   * which takes a moment and about 7 to 10 bytes per cell.
   */
  keys(prefix?: string): IterableIterator<string>;
  /** The data texts of the keys that begin with `prefix`. */
  values(prefix?: string): IterableIterator<string>;
  /** The keys that begin with `prefix`, with their data texts. */
  entries(prefix?: string): IterableIterator<[string, string]>;
  [Symbol.iterator](): IterableIterator<[string, string]>;
  forEach<Self = undefined>(
    callback: (this: Self, data: string, key: string, dictionary: this) => void, self?: Self): void;

  /** Whether any key is in the text; stops at the first. */
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

  /** The matches of many texts as typed arrays, which are not copied. */
  findColumns(texts: Iterable<string>, options?: ColumnOptions): Columns;
  findColumnsAsync(texts: Iterable<string>, options?: ColumnOptions): Promise<Columns>;
  /** The data text with that number in that image of a set. */
  dataAt(dataNumber: number, image?: number): string | undefined;

  /** Of a set, the sums: a key of several dictionaries counts once for each. */
  describe(): Description;
}

/** An open image. */
export class Dictionary extends Searchable {
  private constructor();

  /**
   * Builds the image file `image`, on the thread pool. Under that name is the old file or the
   * complete new one, at every moment. Rejects with a BuildError.
   */
  static build(source: Source, image: Path, options?: BuildOptions): Promise<BuildReport>;
  /** Builds an image in memory. */
  static buildBytes(source: Source, options?: BuildOptions): Promise<Uint8Array>;
  /** Builds nothing, in little memory, and reports what a build would. */
  static check(source: Source, options?: BuildOptions): Promise<BuildReport>;
  /** Builds an image in memory and opens it. */
  static of(source: Source, options?: BuildOptions): Promise<Dictionary>;

  /**
   * Verifies and opens an image file, in one pass over it; an unchanged file that this process has
   * already open is not verified again. Throws a DictionaryError.
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
 * several, the later dictionary wins. They may be closed before the set.
 */
export class DictionarySet extends Searchable {
  constructor(dictionaries: Iterable<Dictionary>);
}

/** How the weights of keys are read from a data field of a key's first record, counted from 1. */
export type SegmenterOptions =
  /**
   * The field has counts: a key costs log(total) - log(count), total over all keys, and a character
   * that is in no key has the count 1.
   */
  | { readonly countField: number }
  /** The field has costs, and a character that is in no key costs `unknownCost`. */
  | { readonly costField: number; readonly unknownCost: number };

/**
 * Cuts texts into keys and unknown characters so that their total cost is least, of several ways
 * with the longer first word. It goes on when its dictionary is closed.
 */
export class Segmenter extends Segmenting {
  /** Throws a DictionaryError that names a key without a weight, if there is one. */
  constructor(dictionary: Dictionary | DictionarySet, options: SegmenterOptions);
}

/** The version of the library inside. */
export const version: string;

export {};
