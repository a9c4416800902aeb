# SPDX-License-Identifier: Apache-2.0
"""Plants faults by which one journey reaches another, or outlives itself, and sees that the short form finds each.

By hand: python3 tests/explorer/planted_faults.py [NUMBER …]. It works on a copy in build/planted and takes some minutes.
"""

import pathlib
import shutil
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
COPY = TOP / "build" / "planted"

STATE = "src/sdk/JourneyState.h"
ENGINE = "src/operations/OperationEngine.cpp"
CONFIRM = "src/flows/ConfirmCardPINView.cpp"
TOKENS = "src/operations/PciTokenOperations.cpp"
IV = "src/transport/IvAcquisition.cpp"

# What is planted, and for each place of it the file, the text before and the text after.
FAULTS = [
    (
        "the PIN goes to the card of the journey made last",
        [("src/operations/PinOperations.cpp", '{&JourneyState::cardId, "cardId = "},\n                   {0u, "pin', '{&SdkConfig::cardId, "cardId = "},\n                   {0u, "pin')],
    ),
    ("the status is asked for the card of the journey made last", [("src/operations/CardStatusOperations.cpp", "{{&JourneyState::cardId}, {&Sdk", "{{&SdkConfig::cardId}, {&Sdk")]),
    ("a bearer token is renewed for the card of the journey made last", [("src/transport/AuthenticatedCall.cpp", "refreshBearerToken(config_, cardId_", "refreshBearerToken(config_, config_.cardId")]),
    (
        "an operation that waits for an IV keeps itself alive",
        [
            (
                ENGINE,
                "[weak = weak_from_this()](const auto&) {\n            const auto self = weak.lock();\n            if (!self) return;\n",
                "[self = shared_from_this()](const auto&) {\n",
            )
        ],
    ),
    (
        "an operation on the wire keeps itself alive, and stores an SMS token when its screen is gone",
        [
            (
                ENGINE,
                "[weak = weak_from_this()](std::optional<Reply> reply, std::optional<CallError> error) {\n                const auto self = weak.lock();\n                if (!self) return;\n",
                "[self = shared_from_this(), weak = weak_from_this()](std::optional<Reply> reply, std::optional<CallError> error) {\n",
            )
        ],
    ),
    (
        "an IV is stored when nobody waits for it any more",
        [
            (IV, "    std::weak_ptr<Waiting> waiting_;\n", "    std::weak_ptr<Waiting> waiting_;\n    std::shared_ptr<Waiting> kept_ = waiting_.lock();\n"),
            (IV, "[waiting = waiting_, ivId", "[waiting = waiting_, kept = kept_, ivId"),
        ],
    ),
    ("the card's type is the process's", [(STATE, "    eKorvaneCardType currentCardType", "    static inline eKorvaneCardType currentCardType")]),
    ("whether the PIN alone is set is the process's", [(STATE, "    bool setPinOnly", "    static inline bool setPinOnly")]),
    ("where the SMS step leads is the process's", [(STATE, "    std::string viewToShowAfterSMSVerify;", "    static inline std::string viewToShowAfterSMSVerify;")]),
    ("the pending PIN is the process's", [(STATE, "    std::string pendingPin;", "    static inline std::string pendingPin;")]),
    (
        "the SMS token is the process's",
        [
            (TOKENS, "{&JourneyState::decryptedPciSmsToken}", "{&SdkConfig::tokenApiUrl}"),
            (TOKENS, "std::string& token = state.decryptedPciSmsToken;", "std::string& token = state.sdk.tokenApiUrl;"),
        ],
    ),
    ("the cardholder's name is the process's", [("src/flows/CardDetails.cpp", "    std::string whole;\n", "    static std::string whole;\n    if (!whole.empty()) return whole;\n")]),
    ("a result does not say whose it is", [("src/flows/CloseJourney.cpp", '{{"result", word}}, state.id)', '{{"result", word}})')]),
    ("the pending PIN stays when it is set", [(CONFIRM, "        wipe(state().pendingPin);\n        autoNavTo(state().setPinOnly", "        autoNavTo(state().setPinOnly")]),
]


def copy_sources():
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=TOP, capture_output=True, text=True, check=True).stdout
    for name in listed.splitlines():
        source, target = TOP / name, COPY / name
        if not source.exists() or (target.exists() and target.read_bytes() == source.read_bytes()):
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)


def first_violation():
    """Builds the explorer and gives what its short form finds first, or none."""
    subprocess.run(["cmake", "--build", "--preset", "dev", "--target", "korvane_explorer"], cwd=COPY, stdout=subprocess.DEVNULL, check=True)
    with subprocess.Popen([COPY / "build/dev/bin/korvane_explorer"], stdout=subprocess.PIPE, text=True) as explorer:
        for line in explorer.stdout:
            if line.startswith("VIOLATION: "):
                explorer.terminate()
                return line.removeprefix("VIOLATION: ").strip()
    if explorer.returncode != 0:
        raise SystemExit(f"the explorer ended with {explorer.returncode} and no violation")
    return None


def plant(places):
    for file, before, after in places:
        text = (COPY / file).read_text()
        if before not in text:
            raise SystemExit(f"{file} no longer has: {before}")
        (COPY / file).write_text(text.replace(before, after, 1))


def main():
    copy_sources()
    subprocess.run(["cmake", "--preset", "dev"], cwd=COPY, stdout=subprocess.DEVNULL, check=True)
    wanted = [int(number) for number in sys.argv[1:]] or range(1, len(FAULTS) + 1)
    missed = 0
    if not sys.argv[1:] and first_violation():
        raise SystemExit("there is a violation already, with nothing planted")
    for number in wanted:
        name, places = FAULTS[number - 1]
        try:
            plant(places)
            found = first_violation()
        finally:
            copy_sources()
        missed += found is None
        print(f"{number:2} {'MISSED' if found is None else 'found '}  {name}" + (f": {found}" if found else ""), flush=True)
    print(f"{len(wanted) - missed} of {len(wanted)} found")
    return missed != 0


if __name__ == "__main__":
    sys.exit(main())
