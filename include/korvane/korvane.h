/* SPDX-License-Identifier: Apache-2.0 */
#ifndef KORVANE_KORVANE_H
#define KORVANE_KORVANE_H

/** @file
 * The component for any language that can call C: journeys without a window.
 *
 * One thread, the one that called korvane_set_up, makes every call but korvane_iv_supply, which any thread
 * may make; from another thread a call answers KORVANE_WRONG_THREAD. Callbacks come on that thread too, from
 * the main loop or from inside a call, log lines from any.
 *
 * A callback may make any call, korvane_journey_destroy and korvane_loop_step included, but neither
 * korvane_set_up nor korvane_tear_down: these answer KORVANE_IN_CALLBACK and do nothing. While
 * korvane_tear_down takes a prompt away, other calls answer KORVANE_NOT_SET_UP. A call may lead to the
 * callback that it is made from: the host ends such a chain.
 *
 * No C++ exception leaves a function. Texts are NUL-terminated UTF-8; the component copies what it is given,
 * and what it hands to a callback is valid until the callback returns. Its own copies of a card's values, and
 * what korvane_free takes, are overwritten before they are freed.
 *
 * Needs Korvane's shared library (libkorvane.so). */

#include <korvane/Export.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The version as a number: 1.0. */
KORVANE_API extern const double KorvaneiOSSDKVersionNumber;
/** NUL-terminated, for tools that look for "@(#)" in a binary. */
KORVANE_API extern const unsigned char KorvaneiOSSDKVersionString[];

/** What became of a call. Anything but KORVANE_OK has changed nothing that a host could see. */
typedef enum korvane_status {
    KORVANE_OK = 0,              /**< done */
    KORVANE_BAD_ARGUMENT = 1,    /**< NULL where a value is needed, or a value that the enumeration has not */
    KORVANE_NOT_SET_UP = 2,      /**< korvane_set_up was not called, or korvane_tear_down was */
    KORVANE_WRONG_THREAD = 3,    /**< not the thread that called korvane_set_up */
    KORVANE_BAD_KEY = 4,         /**< the pre-shared key is not strict base64 */
    KORVANE_NO_SUCH_CONTROL = 5, /**< the screen has no such control, or no digit boxes */
    KORVANE_NOT_ENABLED = 6,     /**< the control is there and cannot be used now */
    KORVANE_NOT_DIGITS = 7,      /**< nothing was typed: the text has more than digits, blanks and dashes */
    KORVANE_NO_PROMPT = 8,       /**< no biometric check is asking */
    KORVANE_FAILED = 9,      /**< out of memory, or an error of the component's own; nothing has changed */
    KORVANE_IN_CALLBACK = 10 /**< not from inside a callback: korvane_set_up and korvane_tear_down */
} korvane_status;

/** In plain English, for a log. Never NULL. */
KORVANE_API const char* korvane_status_text(korvane_status status);

/** Who runs the main loop. */
typedef enum korvane_loop {
    KORVANE_LOOP_GLIB = 0,  /**< the host runs GLib's default main context on the thread */
    KORVANE_LOOP_MANUAL = 1 /**< the host calls korvane_loop_step */
} korvane_loop;

/** Whether log lines have values in them. */
typedef enum korvane_log_values {
    KORVANE_LOG_BY_BUILD =
        0, /**< masked when this library was compiled with NDEBUG, which release builds define */
    KORVANE_LOG_MASKED = 1, /**< each value is masked */
    KORVANE_LOG_CLEAR = 2   /**< as they are: for development */
} korvane_log_values;

/** What the component asks of its host. Zero it, set `size`, and then what you have. The
 * callbacks come on the thread of korvane_set_up, log_line on any. */
typedef struct korvane_host {
    size_t size; /**< sizeof(korvane_host): a later version may add members at the end, and takes a host
                      that has them not */
    int loop;    /**< korvane_loop */
    const char* ca_file;  /**< PEM file of the authorities to trust; NULL: the system's */
    const char* language; /**< of the person (BCP 47: "es-MX"); NULL: the process's locale for messages */
    int mask_secrets;     /**< not 0: log lines have each value masked, whatever log_values is */
    void* context;        /**< handed to the callbacks below */

    /** One line of the log, without a line feed. NULL: standard output. */
    void (*log_line)(void* context, const char* line);
    /** The text of a localization key in the person's language, valid until the next call; NULL or an absent
       callback: the key itself. */
    const char* (*text)(void* context, const char* key);
    /** Puts a card's value into the pasteboard; "" clears it, when it still holds the one put there. An
       absent callback: the device has no pasteboard, and copying says so. */
    void (*copied)(void* context, const char* text);
    /** A biometric check shows why it runs, or with NULL stops to. The reader is armed from
       korvane_prompt_visible(1) on. An absent callback: the device has no biometrics. */
    void (*prompt)(void* context, const char* reason);
    /** How the check goes: a localization key, "sdk.biometrics.retry". May be absent. */
    void (*prompt_message)(void* context, const char* message_id);
    int log_values;     /**< korvane_log_values; a host without this member has KORVANE_LOG_BY_BUILD */
    const char* app_id; /**< of the app in the keyring, which all apps of the user share: the same each time
                           it is started; NULL, or a host without this member: the executable's file name */
} korvane_host;

/** Call it first, from no callback. A second call without korvane_tear_down between gives
 * KORVANE_BAD_ARGUMENT. */
KORVANE_API korvane_status korvane_set_up(const korvane_host* host);

/** Ends the component's threads; the journeys must be destroyed before. From inside a callback it answers
 * KORVANE_IN_CALLBACK and ends nothing: call it when the callback has returned. */
KORVANE_API korvane_status korvane_tear_down(void);

/** KORVANE_LOOP_MANUAL: does what is due, first waiting up to `timeout_ms` milliseconds for something to do;
 * -1 waits without limit. */
KORVANE_API korvane_status korvane_loop_step(int timeout_ms);

/** A question for an initialisation vector. It is the host's until korvane_iv_supply takes it back. */
typedef struct korvane_iv_request korvane_iv_request;
/** Asks the host for an IV, which may answer from inside the call. */
typedef void (*korvane_iv_callback)(void* context, korvane_iv_request* request);

/** Answers, at once or later, exactly once: the request is gone afterwards. Any thread. NULL for either says
 * that there is no IV, which fails the operation that asked. `iv` is in base64 (RFC 4648, padded). */
KORVANE_API void korvane_iv_supply(korvane_iv_request* request, const char* iv_id, const char* iv);

/** What korvane_initialize sets. Zero it, set `size`, then the others. */
typedef struct korvane_config {
    size_t size;                     /**< sizeof(korvane_config) */
    const char* key;                 /**< the pre-shared AES key in base64: 16, 24 or 32 bytes */
    const char* api_url;             /**< base URL of the card service */
    korvane_iv_callback iv_callback; /**< asked whenever an IV is needed */
    void* iv_context;                /**< handed to iv_callback */
    int use_biometrics; /**< not 0: keep the PCI token in the secure store behind a finger; 0 deletes it */
    const char* wearable_name; /**< how a wearable card is named, up to 200 characters; may be NULL */
} korvane_config;

/** Call it before a journey is made; a later call overwrites what it sets. */
KORVANE_API korvane_status korvane_initialize(const korvane_config* config);

/** Saves the first journey three round trips: asks for an IV and renews the bearer token, which opens the
 * connection. Call it once the person has logged in. It shows and reports nothing; when it fails, a journey
 * does what it does without it. A journey that starts meanwhile waits for it, for 30 s at most. KORVANE_OK
 * also when there is nothing to do. */
KORVANE_API korvane_status korvane_prepare(void);

/** The person logs out: journeys that are shown end with "CANCELED"; IV, tokens and timer are dropped and
 * wiped, and what the secure store holds is deleted. korvane_initialize with another key or URL, and
 * korvane_tear_down, drop the same from memory. */
KORVANE_API korvane_status korvane_log_out(void);

/** Whether a PCI token is in memory, and whether the last one's time was up. Never the token itself. */
KORVANE_API korvane_status korvane_pci_token_state(int* held, int* expired);

/** The prompt of a biometric check came into view (not 0) or went out of it (0). */
KORVANE_API korvane_status korvane_prompt_visible(int visible);
/** The person declines the biometric check. */
KORVANE_API korvane_status korvane_prompt_cancel(void);

/** Calls back at each NotificationCloseUI of any journey with "SUCCESS", "CANCELED" or "FAILURE"; one
 * observer at a time, NULL for none. The host answers by destroying the journey. */
KORVANE_API korvane_status korvane_on_close(void (*closed)(void* context, const char* result), void* context);

/** Which journey. */
typedef enum korvane_journey_kind {
    KORVANE_SET_PIN = 0,                   /**< set the PIN of an active card */
    KORVANE_ACTIVATE_CARD_AND_SET_PIN = 1, /**< activate a new card, then set its PIN */
    KORVANE_GET_CARD_IMAGE = 2             /**< view the card: picture, details, freeze */
} korvane_journey_kind;

/** A journey: the host's, until korvane_journey_destroy. */
typedef struct korvane_journey korvane_journey;

/** Makes a journey of a korvane_journey_kind, to be destroyed with korvane_journey_destroy. On failure
 * `*journey` is NULL. */
KORVANE_API korvane_status korvane_journey_create(int kind, const char* card_id, korvane_journey** journey);
/** Ends it, whatever is under way. NULL does nothing; another thread's call does nothing either. */
KORVANE_API void korvane_journey_destroy(korvane_journey* journey);

/** The journey came on screen: the first call starts it. */
KORVANE_API korvane_status korvane_journey_appear(korvane_journey* journey);

/** Calls back once after any number of changes to the screen; one observer at a time, NULL for none. */
KORVANE_API korvane_status korvane_journey_on_change(korvane_journey* journey, void (*changed)(void* context),
                                                     void* context);

/** Calls back at each NotificationCloseUI of this journey with "SUCCESS", "CANCELED" or "FAILURE"; one
 * observer at a time, NULL for none. The host answers by destroying the journey. */
KORVANE_API korvane_status korvane_journey_on_close(korvane_journey* journey,
                                                    void (*closed)(void* context, const char* result),
                                                    void* context);

/** What is on screen, as one JSON object: "view", "instance" (another number when another screen is shown),
 * "depth", "stack", "state", "controls" (id, kind, enabled, and on of a toggle), "spinner", and where the
 * screen has them "title", "image", "body", "bullets", "passcode", "message", "toast", "sheet", "card",
 * "rows", "popup", "disclosureText". Texts are localization keys. The caller frees `*json` with korvane_free;
 * on failure it is NULL. */
KORVANE_API korvane_status korvane_journey_screen(const korvane_journey* journey, char** json);
/** Overwrites and frees what a call handed out; `free` does not fit. NULL does nothing. */
KORVANE_API void korvane_free(void* memory);

/** The card's picture on screen, encoded (PNG or JPEG), for korvane_free; `*bytes` is NULL when there is
 * none. */
KORVANE_API korvane_status korvane_journey_card_image(const korvane_journey* journey, unsigned char** bytes,
                                                      size_t* size);

/** Uses the control of that id. */
KORVANE_API korvane_status korvane_journey_perform(korvane_journey* journey, const char* control_id);
/** Types or pastes: one digit goes into the next box, several take the place of all that is there. Blanks and
 * dashes are dropped, and so is what does not fit. */
KORVANE_API korvane_status korvane_journey_type(korvane_journey* journey, const char* text);
/** The same, but one digit too takes the place of all that is there. */
KORVANE_API korvane_status korvane_journey_replace(korvane_journey* journey, const char* text);
/** Clears the digit before the focus. */
KORVANE_API korvane_status korvane_journey_erase(korvane_journey* journey);
/** Puts the masks back over revealed card data: the app went out of sight. */
KORVANE_API korvane_status korvane_journey_hide_sensitive(korvane_journey* journey);

#ifdef __cplusplus
}
#endif

#endif
