/// <reference lib="esnext.disposable" />

/** A key found in a text. */
export interface Match {
  /** Where the key begins in the text, in UTF-16 units as `String.prototype.slice` counts them. */
  start: number;
  /** Where it ends, exclusive: `text.slice(start, end)` is the key. */
  end: number;
  /** The key's data text as the image holds it. */
  data: string;
}

export type ProblemCode =
  | 'cannot-read' | 'cannot-write' | 'no-memory' | 'bad-separator' | 'no-field' | 'empty-record'
  | 'nul' | 'record-too-long' | 'unfinished' | 'image-too-large' | 'empty-key' | 'bad-utf8' | 'cr'
  | 'bom' | 'beyond-bmp' | 'no-records' | 'not-text' | 'same-file' | 'semicolon';

/** What is wrong with a source or an image file. */
export interface Problem {
  /** The source, or the image when it cannot be written. */
  file: string;
  /** The record's number, from 1, where one is meant. */
  line?: number;
  /** The byte in the record, from 1, where one is meant. */
  column?: number;
  code: ProblemCode;
  /** Of an error no image is made; a refused key is left out; a warning changes nothing. */
  severity: 'error' | 'refused' | 'warning';
  /** Why the system refused, as `ENOENT`, where it did. */
  systemError?: string;
  /** What is wrong and what to do about it. */
  text: string;
}

export interface BuildOptions {
  /**
   * Makes warnings of an empty key, illegal UTF-8 in a key, a carriage return at the end of a line
   * and a byte-order mark. False by default.
   */
  lenient?: boolean;
  /**
   * Sets apart a record's key and data; a tab by default. In both separators `\ddd` and `\udddd`,
   * written with three and four decimal digits, stand for the byte of that value.
   */
  fieldSeparator?: string;
  /** Ends a record; a newline by default. */
  recordSeparator?: string;
}

export interface BuildReport {
  /** Records read, those with problems included. */
  records: number;
  /** Distinct keys in the image. */
  keys: number;
  /** Distinct keys left out. */
  refused: number;
  /** The size of the image, in bytes. */
  imageBytes: number;
  /** Problems found. */
  problemCount: number;
  /** The first hundred of them, in the order of the source. */
  problems: Problem[];
}

export interface OpenOptions {
  /**
   * Keeps a private copy, whatever becomes of the file. By default the file's pages are mapped and
   * shared with all processes that do so, and the file must not change while it is open; to put
   * another file in its place is no change.
   */
  copy?: boolean;
}

/** A source of which no image was made; says what and where its first error is. */
export class BuildError extends Error implements Omit<Problem, 'severity' | 'text'> {
  private constructor();
  readonly file: string;
  readonly line?: number;
  readonly column?: number;
  readonly code: ProblemCode;
  readonly systemError?: string;
  /** Problems of every severity found. */
  readonly problemCount: number;
  /** The first hundred of them, in the order of the source, and the first error in any case. */
  readonly problems: Problem[];
}

/** An image that is refused. */
export class ImageError extends Error {
  private constructor();
  readonly file: string;
  readonly code:
    | 'unreadable' | 'no-memory' | 'too-short' | 'too-large' | 'header' | 'area' | 'free-cell'
    | 'parent' | 'label' | 'base' | 'feature';
  /** Why the system refused, as `ENOENT`, where it did. */
  readonly systemError?: string;
  /** The cell at fault, where one is. */
  readonly cell?: number;
  /** The byte at fault, from the start of the image, where one is. */
  readonly offset?: number;
}

/**
 * An open image.
 *
 * Once it is closed, every call but `close` throws an error with the code `closed`. The Async
 * variants search on Node.js's thread pool and reject where the others throw; one that is under way
 * is not disturbed by `close`. A character above U+FFFF and an unpaired surrogate are passed over;
 * no key holds them.
 */
export class Dictionary implements Disposable {
  private constructor();

  /**
   * Builds the image file `image` from the source file `source`, on the thread pool. Under `image`
   * stands the old file or the complete new one, at every moment. Rejects with a BuildError.
   */
  static build(source: string, image: string, options?: BuildOptions): Promise<BuildReport>;

  /** Verifies and opens an image file, in one pass over it. Throws an ImageError. */
  static open(path: string, options?: OpenOptions): Dictionary;
  /** The same on the thread pool. */
  static openAsync(path: string, options?: OpenOptions): Promise<Dictionary>;

  /** The data text of `key`, or undefined when it is no key. */
  lookup(key: string): string | undefined;
  /** Whether `key`, the whole of it, is a key. */
  has(key: string): boolean;

  /** Every key at every position, by start, shortest first. */
  findAll(text: string): Match[];
  /** The longest key at every position. */
  findLongest(text: string): Match[];
  /** The longest key at the first position that has one, then the same behind it, and so on. */
  segment(text: string): Match[];

  findAllAsync(text: string): Promise<Match[]>;
  findLongestAsync(text: string): Promise<Match[]>;
  segmentAsync(text: string): Promise<Match[]>;

  /** Releases the image, at the latest when the last search that is under way ends. */
  close(): void;
  [Symbol.dispose](): void;
}

/** The version of the library inside. */
export const version: string;
