/* SPDX-License-Identifier: Apache-2.0
 * cc main.c $(pkg-config --cflags --libs korvane libcurl) -pthread */
#include <curl/curl.h>
#include <korvane/korvane.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

static const char* iv_url;
static const char* ca_file;

static size_t keep(char* data, size_t size, size_t count, void* answer) {
    strncat(answer, data, size * count);
    return size * count;
}

/* Asks the bank's own server, on a thread of the host's. */
static void* ask(void* request) {
    char answer[CURL_MAX_WRITE_SIZE] = "", id[256] = "", iv[256] = "";
    CURL* curl = curl_easy_init();
    curl_easy_setopt(curl, CURLOPT_URL, iv_url);
    curl_easy_setopt(curl, CURLOPT_CAINFO, ca_file);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, "{}");
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, answer);
    int known = curl_easy_perform(curl) == CURLE_OK &&
                sscanf(answer, "{\"ivId\":\"%255[^\"]\",\"iv\":\"%255[^\"]\"}", id, iv) == 2;
    korvane_iv_supply(request, known ? id : NULL, known ? iv : NULL);
    curl_easy_cleanup(curl);
    return NULL;
}

static void iv_wanted(void* context, korvane_iv_request* request) {
    pthread_t thread;
    (void)context;
    pthread_create(&thread, NULL, ask, request);
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
