// SPDX-License-Identifier: Apache-2.0
#include "flows/KorvaneActionNavigationLink.h"

#include <utility>

#include "flows/NavigationStack.h"
#include "flows/Screen.h"

namespace korvane {

KorvaneActionNavigationLink::KorvaneActionNavigationLink(std::string_view content, Destination destination,
                                                         Action action)
    : content_(content), destination_(std::move(destination)), action_(std::move(action)) {}

void KorvaneActionNavigationLink::tap(Screen& owner, NavigationStack& stack) const {
    const auto continueToDestination = std::make_shared<bool>(false);
    // The destination is made when the token is called: by then the action has written what it depends on. It
    // is reached through the owner's life, which the link shares.
    action_({[continueToDestination, weakOwner = owner.weak_from_this(), weakStack = stack.weak_from_this(),
              this] {
        const auto aliveOwner = weakOwner.lock();
        const auto aliveStack = weakStack.lock();
        if (*continueToDestination || !aliveOwner || !aliveStack || !aliveStack->isInView(*aliveOwner))
            return;
        *continueToDestination = true;
        aliveStack->push(destination_());
    }});
}

}  // namespace korvane
