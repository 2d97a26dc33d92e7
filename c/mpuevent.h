/*
 * mpuevent.h: reads captures of a storage controller's event log from C, and from every language
 * that calls C. Link with -lmpuevent-c (pkg-config mpuevent-c).
 *
 *     mpuevent_reader *reader;
 *     mpuevent_batch *batch;
 *     mpuevent_status status = mpuevent_open("a.cap", NULL, &reader);
 *     if (status == MPUEVENT_OK) {
 *         while ((status = mpuevent_next(reader, &batch)) == MPUEVENT_OK) {
 *             ... mpuevent_batch_text(batch, column)[event].data ...
 *             mpuevent_batch_free(batch);
 *         }
 *         mpuevent_close(reader);
 *     }
 *     if (status != MPUEVENT_END)
 *         fprintf(stderr, "%s\n", mpuevent_last_error());
 *
 * Shapes. A reader hands out batches. A batch has some events, one after the other, column by
 * column: what an event says in a column is one element of that column's array. Beside its columns
 * an event has fields (the elements of its body) and objects (what it is about).
 *
 * Texts are valid UTF-8, whatever the capture holds. A zero byte follows each, and there may be
 * others inside it: `size` is what counts.
 *
 * Units. Offsets and sizes are bytes: of the messages, after unpacking and decoding of text, from
 * 0. `timestamp` is the firmware's number, of no known unit; with an epoch it counts seconds.
 *
 * Ownership. The caller closes readers and frees batches, in any order: a batch does not need its
 * reader. What a batch hands out lives until the batch is freed. Paths and options are copied.
 *
 * Errors. Functions that can fail return a status and leave where results would go untouched;
 * mpuevent_last_error() tells the reason. No input makes any of them crash, and damage is no error:
 * reading goes on after it, see mpuevent_batch_damage().
 *
 * Threads. A reader is used by one thread at a time; different readers by different threads. A
 * batch may be used by any number of threads until one of them frees it.
 */
#ifndef MPUEVENT_H
#define MPUEVENT_H

#include <stddef.h>
#include <stdint.h>

#ifdef __GNUC__
#define MPUEVENT_API __attribute__((visibility("default")))
#else
#define MPUEVENT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef enum mpuevent_status {
    MPUEVENT_OK = 0,
    MPUEVENT_END = 1,        /* there are no more batches */
    MPUEVENT_INVALID = 2,    /* an argument that cannot be */
    MPUEVENT_IO = 3,         /* the file could not be opened or read; errno tells why */
    MPUEVENT_NO_CAPTURE = 4, /* the file is something else */
    MPUEVENT_NO_MEMORY = 5,
    MPUEVENT_INTERNAL = 6 /* a defect of this library */
} mpuevent_status;

/* The release, such as "0.1.0". */
MPUEVENT_API const char* mpuevent_version(void);

/*
 * Why the last call of this thread that failed did so: file, place and reason, such as
 * "a.cap: offset 4096: Input/output error". Until the thread's next failure.
 */
MPUEVENT_API const char* mpuevent_last_error(void);

typedef struct mpuevent_text {
    const char* data; /* never null */
    size_t size;
} mpuevent_text;

/* ---- columns --------------------------------------------------------------------------------- */

typedef enum mpuevent_type {
    MPUEVENT_UINT32 = 0,
    MPUEVENT_UINT64 = 1,
    MPUEVENT_TEXT = 2
} mpuevent_type;

typedef struct mpuevent_column {
    const char* name; /* as a key of the command's JSON: "sequenceID" */
    const char* meaning;
    mpuevent_type type;
} mpuevent_column;

/*
 * The columns have numbers from 0 on. These are of this build of the library: others may have more
 * columns, between those of today. Names and meanings stay.
 */
MPUEVENT_API size_t mpuevent_column_count(void);
/* Null from the count on. Lives for ever. */
MPUEVENT_API const mpuevent_column* mpuevent_column_at(size_t column);
/* The number of a column; the count if there is none of that name. */
MPUEVENT_API size_t mpuevent_column_find(const char* name);

/* ---- readers --------------------------------------------------------------------------------- */

typedef struct mpuevent_reader mpuevent_reader;
typedef struct mpuevent_batch mpuevent_batch;

typedef struct mpuevent_options {
    size_t size; /* of this structure, for versions with more members */
    /*
     * Only messages, and damage, that begin at these offsets: begin or later, before end. Adjoining
     * ranges have together exactly what the whole has, wherever they meet. What comes before
     * `begin` is read as well, but not decoded, since where messages begin may depend on all of it.
     */
    uint64_t begin;
    uint64_t end;
    /* "auto" (null is the same), "cmap", "record", "hex" or "hex-record", as of the command. */
    const char* input;
    /*
     * Most events of a batch; 0: as many as suit. A batch has fewer where its texts grow long, and
     * at the end. A pipe is waited for until the batch is full.
     */
    size_t batch_events;
    /* If not 0, what is read from an assumed layout is left out: number and payload replace it. */
    int known_only;
    /*
     * If `has_epoch` is not 0, `epoch` is the Unix time in seconds at which a timestamp is 0, and
     * the column "time" has dates, RFC 3339 in UTC; it is empty otherwise. All years are 0 to 9999.
     */
    int has_epoch;
    int64_t epoch;
} mpuevent_options;

#define MPUEVENT_OPTIONS_INIT                                                                      \
    { sizeof(mpuevent_options), 0, UINT64_MAX, NULL, 0, 0, 0, 0 }

/*
 * Opens a capture ("-": standard input) and recognises what it holds by its first bytes: messages
 * or bare records, as they are, as hex or base64 text, and any of that packed by gzip, xz or zstd.
 * Null options are those of MPUEVENT_OPTIONS_INIT.
 */
MPUEVENT_API mpuevent_status mpuevent_open(const char* path, const mpuevent_options* options,
                                           mpuevent_reader** reader);
/* Null is nothing to close. */
MPUEVENT_API void mpuevent_close(mpuevent_reader* reader);

/* What was recognised, from the outside in; empty for plain messages. Lives as the reader does. */
MPUEVENT_API const char* mpuevent_reader_description(const mpuevent_reader* reader);
/* 1 if the messages are in the file as they are, so that its size bounds their offsets; else 0. */
MPUEVENT_API int mpuevent_reader_is_plain(const mpuevent_reader* reader);

/*
 * The next batch. It has events, damage or both; MPUEVENT_END when there is neither. A failure is
 * told when all that came before it was handed out, and again by each later call; where memory ran
 * out the events of the batch are lost.
 */
MPUEVENT_API mpuevent_status mpuevent_next(mpuevent_reader* reader, mpuevent_batch** batch);
/* Null is nothing to free. */
MPUEVENT_API void mpuevent_batch_free(mpuevent_batch* batch);

/* ---- batches --------------------------------------------------------------------------------- */

/* The number of events. */
MPUEVENT_API size_t mpuevent_batch_size(const mpuevent_batch* batch);

/* An array of that many elements; null for a column of another type. */
MPUEVENT_API const uint32_t* mpuevent_batch_uint32(const mpuevent_batch* batch, size_t column);
MPUEVENT_API const uint64_t* mpuevent_batch_uint64(const mpuevent_batch* batch, size_t column);
/* A text that is that of the event before may be the same memory. */
MPUEVENT_API const mpuevent_text* mpuevent_batch_text(const mpuevent_batch* batch, size_t column);

typedef enum mpuevent_field_kind {
    MPUEVENT_FIELD_TEXT = 0,    /* a value without a name: text outside elements */
    MPUEVENT_FIELD_ELEMENT = 1, /* a name and a value */
    MPUEVENT_FIELD_GROUP = 2,   /* a name; the fields that it holds follow */
    MPUEVENT_FIELD_END = 3      /* of the innermost group */
} mpuevent_field_kind;

typedef struct mpuevent_field {
    mpuevent_field_kind kind;
    mpuevent_text name;  /* names repeat */
    mpuevent_text value; /* as in the body */
    /* How well its place in the record is known: "documented", "inferred" or "assumed". */
    mpuevent_text layout;
    uint32_t missing_bytes; /* that the record lacks: zeros stand for them */
} mpuevent_field;

typedef struct mpuevent_object {
    mpuevent_text kind; /* "drive", "volume", "fan", ..., "controller", "enclosure" */
    mpuevent_text id;   /* a number, a name, an address; empty where the record has none */
    int is_assumed;     /* 1 if the layout that says so is; else 0 */
    /* Of the drive of an event that names one drive alone, where it tells; else empty. */
    mpuevent_text model;
    mpuevent_text serial_number;
} mpuevent_object;

/*
 * The fields of an event's body in order; the objects that it names, each once. Both are found when
 * one is asked for the first time, which takes as long as decoding the event a few times. `event`
 * counts from 0 in the batch.
 */
MPUEVENT_API mpuevent_status mpuevent_batch_fields(mpuevent_batch* batch, size_t event,
                                                   const mpuevent_field** fields, size_t* count);
MPUEVENT_API mpuevent_status mpuevent_batch_objects(mpuevent_batch* batch, size_t event,
                                                    const mpuevent_object** objects, size_t* count);

typedef struct mpuevent_damage {
    uint64_t offset; /* of the first byte; for an outer fault how far the reading was */
    /* Bytes that became no event; 0: the message at this offset was taken all the same. */
    uint64_t passed_over;
    int resumed;           /* 1 if a message follows; else 0 */
    int is_outer;          /* 1 for a fault of compression or text, around the messages; else 0 */
    mpuevent_text reason;  /* with the place for an outer fault: "line 3, column 7: ..." */
    mpuevent_text message; /* all of it in one line for people, but for the file */
} mpuevent_damage;

/*
 * What was found up to the last event of the batch and not told by an earlier one, in order. After
 * 65536 faults in one batch the others are counted, in one more outer fault.
 */
MPUEVENT_API const mpuevent_damage* mpuevent_batch_damage(const mpuevent_batch* batch,
                                                          size_t* count);

#ifdef __cplusplus
}
#endif

#endif
