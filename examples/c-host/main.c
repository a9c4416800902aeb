/* SPDX-License-Identifier: Apache-2.0
 * cc main.c $(pkg-config --cflags --libs korvane libcurl jansson) -pthread */
#include <curl/curl.h>
#include <korvane/korvane.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

#include "iv_answer.h"

static const char* iv_url;
static const char* ca_file;

/* Asks the bank's own server, on a thread of the host's. */
static void* ask(void* request) {
    struct iv_answer answer = {.size = 0};
    char id[IV_TEXT_MAX], iv[IV_TEXT_MAX];
    CURL* curl = curl_easy_init();
    curl_easy_setopt(curl, CURLOPT_URL, iv_url);
    curl_easy_setopt(curl, CURLOPT_CAINFO, ca_file);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, "{}");
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, iv_answer_keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
    int known = curl_easy_perform(curl) == CURLE_OK && iv_answer_read(&answer, id, iv);
    korvane_iv_supply(request, known ? id : NULL, known ? iv : NULL);
    curl_easy_cleanup(curl);
    return NULL;
}

static void iv_wanted(void* context, korvane_iv_request* request) {
    pthread_t thread;
    (void)context;
    if (pthread_create(&thread, NULL, ask, request))
        korvane_iv_supply(request, NULL, NULL); /* unanswered, it would be waited for */
    else
        pthread_detach(thread);
}

int main(int argc, char** argv) {
    if (argc != 5) return fprintf(stderr, "usage: c-host SERVICE KEY IV-URL CA-FILE\n"), 2;
    iv_url = argv[3], ca_file = argv[4];
    korvane_host host = {.size = sizeof host, .loop = KORVANE_LOOP_MANUAL, .ca_file = ca_file};
    korvane_config config = {
        .size = sizeof config, .key = argv[2], .api_url = argv[1], .iv_callback = iv_wanted};
    korvane_journey* journey = NULL;
    char* screen = NULL;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    if (korvane_set_up(&host) || korvane_initialize(&config)) return 2;
    korvane_journey_create(KORVANE_SET_PIN, "card-physical-active", &journey);
    korvane_journey_appear(journey);
    do { /* a real host draws the screen and goes on */
        korvane_free(screen);
        korvane_loop_step(100);
        korvane_journey_screen(journey, &screen);
    } while (strstr(screen, "\"view\":\"SetPIN\""));
    puts(screen);
    korvane_free(screen);
    korvane_journey_destroy(journey);
    return korvane_tear_down();
}
