/*
 * What a capture holds, from C: example_titles [CAPTURE]. Without one it makes its own: two
 * messages with 20 foreign bytes between them.
 *
 * Prints: #2 ESA: ES Adapter Power Supply Status Event
 */
#include <mpuevent.h>

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* A message without payload: its header of 64 bytes and the record's of 152. */
static void put_message(FILE* to, unsigned char sequence) {
    unsigned char message[64 + 152] = {0};
    unsigned char* const record = message + 64;

    message[11] = sizeof message; /* length */
    memcpy(record, "ENC0004711", 10);
    memcpy(record + 64, "CTL0000816", 10);
    record[139] = sequence;
    record[146] = 33; /* source */
    record[147] = 3;  /* event type */
    record[148] = 2;  /* category */
    record[151] = 6;  /* event number */
    fwrite(message, 1, sizeof message, to);
}

static int make_capture(const char* path) {
    unsigned char foreign[20];
    FILE* const to = fopen(path, "wb");

    if (to == NULL)
        return 0;
    memset(foreign, 0xFF, sizeof foreign);
    put_message(to, 1);
    fwrite(foreign, 1, sizeof foreign, to);
    put_message(to, 2);
    return fclose(to) == 0;
}

static mpuevent_status show(mpuevent_batch* batch) {
    const uint32_t* const sequence =
        mpuevent_batch_uint32(batch, mpuevent_column_find("sequenceID"));
    const mpuevent_text* const source = mpuevent_batch_text(batch, mpuevent_column_find("source"));
    const mpuevent_text* const title = mpuevent_batch_text(batch, mpuevent_column_find("eventID"));
    const mpuevent_damage* damage;
    const mpuevent_field* fields;
    mpuevent_status status;
    size_t count, event, i;

    damage = mpuevent_batch_damage(batch, &count);
    for (i = 0; i < count; ++i)
        printf("%s\n", damage[i].message.data);
    for (event = 0; event < mpuevent_batch_size(batch); ++event) {
        printf("#%" PRIu32 " %s: %s\n", sequence[event], source[event].data, title[event].data);
        status = mpuevent_batch_fields(batch, event, &fields, &count);
        if (status != MPUEVENT_OK)
            return status;
        for (i = 0; i < count; ++i)
            printf("    %s: %s\n", fields[i].name.data, fields[i].value.data);
    }
    return MPUEVENT_OK;
}

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "example_titles.cap";
    mpuevent_reader* reader;
    mpuevent_batch* batch;
    mpuevent_status status;

    if (argc < 2 && !make_capture(path)) {
        perror(path);
        return EXIT_FAILURE;
    }
    status = mpuevent_open(path, NULL, &reader);
    if (status == MPUEVENT_OK) {
        while (status == MPUEVENT_OK && (status = mpuevent_next(reader, &batch)) == MPUEVENT_OK) {
            status = show(batch);
            mpuevent_batch_free(batch);
        }
        mpuevent_close(reader);
    }
    if (argc < 2)
        remove(path);
    if (status != MPUEVENT_END) {
        fprintf(stderr, "%s\n", mpuevent_last_error());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
