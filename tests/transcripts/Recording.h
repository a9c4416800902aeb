// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace korvane {

/// Plays a journey in this process, which must not have shown one before. Tells each step, behind "* ", and
/// below it what came of it:
///
///     log TEXT, close RESULT     a console line, a close notification
///     > ENDPOINT NAME=VALUE …    a request, deciphered, and its bearer token in brackets
///     view STACK …               what is shown from now on; on the same screen, what is gone (-) and new (+)
///     host gives ID              an answer to the component's wish for an IV
///     finger TEXT                a biometric check began
///     pasteboard TEXT            what it holds from now on
///     kept NAME=VALUE            what is in the secure store in the end
///
/// Steps:
///
///     card TYPE STATUS, detail NAME=VALUE, detail NAME        the card, a detail of it, or none
///     answer ENDPOINT STATUS [WORD] | fields NAME=VALUE … | body TEXT | lost        to the next request
///     iv none | TEXT                                          the host's next answer, instead of a good one
///     held bearer | pci | iv, stored NAME VALUE               in memory, or in the secure store
///     biometrics [readerless], wearable NAME                  as the host initializes the component
///     start setPIN | activateCardAndSetPIN | getCardImage     comes once, what a person does after it
///     tap CONTROL (or how its id ends), type DIGITS (in place of what is there), insert DIGITS, delete,
///     hide, wait SECONDS, finger match | other
///
/// Throws at a step that it does not know, and when the component works on without end.
std::vector<std::string> record(const std::vector<std::string>& steps);

}  // namespace korvane
