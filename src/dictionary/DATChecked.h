/* The careful way in and out of images, beside the functions of DATInterface.h: images are checked
 * before they are used, and sources are built without a word on any stream.
 *
 * Conventions, the same for all functions here and in DATMatch.h:
 * - No function writes to a stream, ends the process or lets an exception out.
 * - Paths are NUL-terminated. Sizes and offsets are counted in bytes, lines and columns from 1.
 * - A pointer to an out parameter may be null when the caller does not want to know.
 * - Texts handed out are the library's own, in English; they need no release and last for good
 *   where nothing else is said.
 * - Everything may be called from several threads at once, but for two builds of one image file
 *   and for destroyBin, which must not run while its handle is in use.
 * - A struct that begins with `size` is to be zeroed and given its own sizeof there, so that a
 *   later version can add members.
 */

#ifndef DICTIONARY_DAT_CHECKED_H
#define DICTIONARY_DAT_CHECKED_H

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#endif

#include "DictionaryExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Images of unknown origin ---- */

/* Why an image is refused. The numbers stay as they are. */
enum DictionaryImageCode {
    DICTIONARY_IMAGE_OK = 0,
    DICTIONARY_IMAGE_UNREADABLE = 1, /* the file cannot be opened, read or mapped */
    DICTIONARY_IMAGE_NO_MEMORY = 2,  /* memory is short */
    DICTIONARY_IMAGE_TOO_SHORT = 3,  /* shorter than a header */
    DICTIONARY_IMAGE_TOO_LARGE = 4,  /* larger than an image can be */
    DICTIONARY_IMAGE_HEADER = 5,     /* the sizes in the header do not add up to the image's */
    DICTIONARY_IMAGE_AREA = 6,       /* a feature record runs over the end of the area */
    DICTIONARY_IMAGE_FREE_CELL = 7,  /* a free cell is not as written */
    DICTIONARY_IMAGE_PARENT = 8,     /* a cell has a parent that cannot be, or leads back to it */
    DICTIONARY_IMAGE_LABEL = 9,      /* a cell's distance from its parent's base is no label */
    DICTIONARY_IMAGE_BASE = 10,      /* a cell in use has no base that can be */
    DICTIONARY_IMAGE_FEATURE = 11    /* a cell refers to no record of the area */
};

/* The name of a code, as tools print it: "free-cell". "unknown" for any other number. */
DICTIONARY_EXPORT const char* dictionaryFaultName(int code);

/* The first reason against an image, and where it lies. */
typedef struct DictionaryImageFault {
    int code;         /* one of DictionaryImageCode */
    int systemError;  /* errno where the system refused, else 0 */
    int64_t cell;     /* the cell at fault, or -1 */
    int64_t offset;   /* the byte at fault, from the start of the image, or -1 */
    const char* text; /* what is wrong, in words */
} DictionaryImageFault;

/* Whether the `size` bytes at `image` are an image over which every lookup with every text stays
 * inside. `fault` gets the first reason against it, or DICTIONARY_IMAGE_OK. Takes one pass, and
 * memory for a bit a cell and a bit a byte of features.
 *
 * Every image that buildTree completes is accepted, and so is the empty one that it leaves of a bad
 * source. Refused are images of other coders than CUTF8Coder, and those of builds that ran out of
 * room. */
DICTIONARY_EXPORT bool dictionaryVerify(const void* image, size_t size,
                                        DictionaryImageFault* fault);

/* The same for the file `fileName`, which must not become shorter meanwhile. */
DICTIONARY_EXPORT bool dictionaryVerifyFile(const char* fileName, DictionaryImageFault* fault);

/* What an open image rests on. */
enum DictionaryOpenMode {
    DICTIONARY_OPEN_MAP = 0, /* shares the file's pages; the file must not change while open */
    DICTIONARY_OPEN_COPY = 1 /* keeps a private copy, whatever becomes of the file */
};

/* Verifies the image file `fileName` and returns a handle to it for `search`, `destroyBin` and the
 * functions of DATMatch.h, or null and the reason in `fault`. In a copy, what was verified is what
 * is searched. Only regular files are opened: for a directory `systemError` is EISDIR, for a pipe
 * or a device EINVAL, as it is when `mode` is none of the above. */
DICTIONARY_EXPORT void* dictionaryOpen(const char* fileName, int mode, DictionaryImageFault* fault);

/* ---- Building ---- */

/* What can be wrong with a source or an image file. The numbers and names stay as they are. */
enum DictionaryProblemCode {
    DICTIONARY_PROBLEM_NONE = 0,             /* none: nothing is wrong */
    DICTIONARY_PROBLEM_CANNOT_READ = 1,      /* cannot-read: the source, or the system says why */
    DICTIONARY_PROBLEM_CANNOT_WRITE = 2,     /* cannot-write: the image file */
    DICTIONARY_PROBLEM_NO_MEMORY = 3,        /* no-memory */
    DICTIONARY_PROBLEM_BAD_SEPARATOR = 4,    /* bad-separator: empty, or with a NUL in it */
    DICTIONARY_PROBLEM_NO_FIELD = 5,         /* no-field: a record without a field separator */
    DICTIONARY_PROBLEM_EMPTY_RECORD = 6,     /* empty-record: an empty line */
    DICTIONARY_PROBLEM_NUL = 7,              /* nul: a NUL byte */
    DICTIONARY_PROBLEM_RECORD_TOO_LONG = 8,  /* record-too-long */
    DICTIONARY_PROBLEM_UNFINISHED = 9,       /* unfinished: no record separator behind the last */
    DICTIONARY_PROBLEM_IMAGE_TOO_LARGE = 10, /* image-too-large */
    DICTIONARY_PROBLEM_EMPTY_KEY = 11,       /* empty-key: a record that begins with a separator */
    DICTIONARY_PROBLEM_BAD_UTF8 = 12,        /* bad-utf8: in a key, which would be cut there */
    DICTIONARY_PROBLEM_CR = 13,              /* cr: a carriage return at the end of a line */
    DICTIONARY_PROBLEM_BOM = 14,             /* bom: a byte-order mark at the source's start */
    DICTIONARY_PROBLEM_BEYOND_BMP = 15,      /* beyond-bmp: a character above U+FFFF in a key */
    DICTIONARY_PROBLEM_NO_RECORDS = 16,      /* no-records: the source is empty */
    DICTIONARY_PROBLEM_NOT_TEXT = 17,        /* not-text: a compressed file, UTF-16, an image */
    DICTIONARY_PROBLEM_SAME_FILE = 18,       /* same-file: the source and the image are one file */
    DICTIONARY_PROBLEM_SEMICOLON = 19        /* semicolon: at the start of a field but the first */
};

/* The name of a code, as tools print it: "no-field". "unknown" for any other number. */
DICTIONARY_EXPORT const char* dictionaryProblemName(int code);

/* What a problem means for the image. */
enum DictionarySeverity {
    DICTIONARY_ERROR = 0,   /* no image is made */
    DICTIONARY_REFUSED = 1, /* the image is made without the key */
    DICTIONARY_WARNING = 2  /* the image is made */
};

/* What is wrong with a source or an image file, and where. */
typedef struct DictionaryProblem {
    int code;         /* one of DictionaryProblemCode */
    int severity;     /* one of DictionarySeverity */
    int systemError;  /* errno where the system refused, else 0 */
    uint64_t line;    /* the record's number, from 1; 0 where no record is meant */
    uint64_t column;  /* the byte in the record, from 1, or where one is missing behind it; 0 where
                       * no byte is meant */
    const char* text; /* what is wrong and what to do about it, in words; lasts during the call */
} DictionaryProblem;

/* What a build is at; the stages come in this order. */
enum DictionaryBuildStage {
    DICTIONARY_STAGE_READ = 0,  /* done and total count bytes of the source */
    DICTIONARY_STAGE_PLACE = 1, /* done and total count keys that pass through nodes */
    DICTIONARY_STAGE_WRITE = 2  /* done and total count bytes of the image */
};

/* How a source is read, and whom a build tells what it does. */
typedef struct DictionaryBuildOptions {
    size_t size;                 /* sizeof(DictionaryBuildOptions) */
    const char* fieldSeparator;  /* in the notation of getEscapeSeparator; null for a tab */
    const char* recordSeparator; /* likewise; null for a newline */
    /* How many problems to report at most; 0 for 100. The first error is reported even so. */
    unsigned problemLimit;
    /* Makes warnings of an empty key, illegal UTF-8, a carriage return at the end of a line and a
     * byte-order mark, which buildTree takes as they come. */
    bool lenient;
    /* Told each problem, in the order of the source. May be null. */
    void (*onProblem)(void* context, const DictionaryProblem* problem);
    /* Told now and then how far a stage is, and once at its end, when `done` is `total`; before
     * that a `total` of 0 is not known yet, as that of a pipe. While a pipe is waited for it is
     * told at least ten times a second. False stops the build. May be null. */
    bool (*onProgress)(void* context, int stage, uint64_t done, uint64_t total);
    void* context; /* given to all of them, which are called on the caller's thread; an exception
                    * that one of them throws stops the build and goes no further */
    /* Takes the image, piece after piece, where no name for it is given. False stops the build. May
     * be null. */
    bool (*onImage)(void* context, const void* bytes, size_t size);
    /* Reads sources as Windows writes them: a carriage return at the end of a line and a byte-order
     * mark at the start are no part of the records. */
    bool windows;
    bool allowEmpty; /* makes an image of a source without records, which is an error otherwise */
} DictionaryBuildOptions;

/* What a build counted. */
typedef struct DictionaryBuildReport {
    size_t size;         /* sizeof(DictionaryBuildReport) */
    uint64_t records;    /* read, those with problems included */
    uint64_t keys;       /* distinct ones in the image; 0 when none is written */
    uint64_t refused;    /* distinct keys left out */
    uint64_t problems;   /* found, those beyond the limit included */
    uint64_t imageBytes; /* of the image written; 0 when none is */
} DictionaryBuildReport;

/* How a build ended. */
enum DictionaryBuildResult {
    DICTIONARY_BUILT = 0,              /* every record is in the image */
    DICTIONARY_BUILT_WITHOUT_SOME = 1, /* keys were refused; the others are in the image */
    DICTIONARY_NOT_BUILT = 2,          /* an error; there is no new image */
    DICTIONARY_STOPPED = 3             /* a callback said so; there is no new image */
};

/* Builds the image file `imageName` from the source file `sourceName`, which may be a pipe. The
 * image is the one that buildTree makes of a source that it takes whole. It is written beside its
 * place, synced and renamed: under `imageName` stands the old file or the complete new one, at
 * every moment. Only a process that is killed leaves the unfinished file, `.NAME.` and letters. A
 * symbolic link stays and the file that it leads to is replaced; a new image may be used by those
 * who might use the old one. A folder, a device, a file that may not be written and the source
 * itself are refused before the source is read, and so is a symbolic link that the system would not
 * follow because of who made it. Until the image is complete, its file is open to its owner alone.
 * A file that would become larger than the process may write is an error and not the end of it.
 * With a null `imageName` the image goes to the option `onImage`. Without that, too, the source is
 * only checked, in little memory, and the result says what would become of it; then there is also a
 * warning of each record with a field that begins with ";" after another one, which looks like
 * data of a key that comes twice. All problems of the source are told, in its order; behind the
 * first error nothing is built any more. `options` may be null. Returns one of
 * DictionaryBuildResult. */
DICTIONARY_EXPORT int dictionaryBuild(const char* sourceName, const char* imageName,
                                      const DictionaryBuildOptions* options,
                                      DictionaryBuildReport* report);

/* The same from the `size` bytes at `source`. */
DICTIONARY_EXPORT int dictionaryBuildBytes(const char* source, size_t size, const char* imageName,
                                           const DictionaryBuildOptions* options,
                                           DictionaryBuildReport* report);

/* ---- The library at hand ---- */

/* The version of the library that runs: "1.0.0". DictionaryVersion.h has that of the headers. */
DICTIONARY_EXPORT const char* dictionaryVersion(void);

#ifdef __cplusplus
}
#endif

#endif
