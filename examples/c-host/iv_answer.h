/* SPDX-License-Identifier: Apache-2.0
 * What the bank's own server answers for an IV: {"ivId": text, "iv": base64}. Whatever comes instead, nothing
 * is written past an end, and there is no IV. */
#ifndef IV_ANSWER_H
#define IV_ANSWER_H

#include <jansson.h>
#include <string.h>

enum { IV_ANSWER_MAX = 4096, IV_TEXT_MAX = 256 };

struct iv_answer {
    char bytes[IV_ANSWER_MAX];
    size_t size;
};

/* For CURLOPT_WRITEFUNCTION: a longer answer ends the transfer. */
static inline size_t iv_answer_keep(char* data, size_t size, size_t count, void* into) {
    struct iv_answer* const answer = (struct iv_answer*)into;
    const size_t more = size * count;
    if (more > IV_ANSWER_MAX - answer->size) return more + 1; /* anything but `more` is an error to curl */
    memcpy(answer->bytes + answer->size, data, more);
    answer->size += more;
    return more;
}

static inline int iv_answer_text(const json_t* object, const char* name, char text[IV_TEXT_MAX]) {
    const json_t* const member = json_object_get(object, name); /* NULL, too, when it is no object */
    const size_t length = json_string_length(member);           /* 0 of anything but a text */
    if (length == 0 || length >= IV_TEXT_MAX) return 0;
    memcpy(text, json_string_value(member), length + 1);
    return 1;
}

/* Not 0 when both texts are there; they are NUL-terminated then. The parser refuses a NUL in a text, and
 * arrays and objects that are more than 2048 deep. */
static inline int iv_answer_read(const struct iv_answer* answer, char id[IV_TEXT_MAX], char iv[IV_TEXT_MAX]) {
    json_t* const root = json_loadb(answer->bytes, answer->size, 0, NULL);
    const int known = iv_answer_text(root, "ivId", id) && iv_answer_text(root, "iv", iv);
    json_decref(root);
    return known;
}

#endif
