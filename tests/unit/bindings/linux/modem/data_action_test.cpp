#include "bindings/linux/modem/data_action.h"

#include <gtest/gtest.h>

namespace {

using binding::DataAction;
using Kind = DataAction::Kind;
using Wait = DataAction::Wait;

constexpr bool kByModem = false;
constexpr bool kByManager = true;
constexpr auto kNoManager = DataAction::Manager::idle;
constexpr auto kStarting = DataAction::Manager::starting;
constexpr auto kActive = DataAction::Manager::active;
constexpr auto kEnding = DataAction::Manager::ending;
constexpr auto kIdle = DataAction::Manager::idle;
constexpr bool kFailed = true;
constexpr bool kDone = false;

DataAction Connected() {
    DataAction action;
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kNoManager);
    return action;
}

TEST(DataAction, WithoutActionTheStatusIsThatOfTheModem) {
    DataAction action;
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
    action.Update(SYS_DATA_CONNECTION_DORMANT, kNoManager);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DORMANT);
    EXPECT_EQ(action.WaitsFor(), Wait::nothing);
}

TEST(DataAction, AConnectionIsShownFromTheBeginningToTheEnd) {
    DataAction action;
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::connect);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(action.WaitsFor(), Wait::answer);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(action.WaitsFor(), Wait::sign);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kNoManager);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(action.WaitsFor(), Wait::nothing);
}

TEST(DataAction, ADisconnectionIsShownFromTheBeginningToTheEnd) {
    DataAction action = Connected();
    EXPECT_EQ(action.Ask(Kind::disconnect, kByModem), Kind::disconnect);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    action.Update(SYS_DATA_CONNECTION_READY, kNoManager);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, WhatIsReachedAlreadyIsNotSent) {
    DataAction connected = Connected();
    EXPECT_EQ(connected.Ask(Kind::connect, kByModem), Kind::none);
    EXPECT_EQ(connected.WaitsFor(), Wait::nothing);
    DataAction ready;
    EXPECT_EQ(ready.Ask(Kind::disconnect, kByModem), Kind::none);
    EXPECT_EQ(ready.WaitsFor(), Wait::nothing);
}

TEST(DataAction, AConnectionThatSomebodyElseMakesCanBeEnded) {
    DataAction action;
    action.Update(SYS_DATA_CONNECTION_CONNECTING, kNoManager);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByModem), Kind::disconnect);
}

TEST(DataAction, ASecondActionOfTheSameKindJoinsTheFirst) {
    DataAction action;
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::connect);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::none);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
}

TEST(DataAction, AFailureEndsTheAction) {
    DataAction action;
    action.Ask(Kind::connect, kByModem);
    EXPECT_EQ(action.Answered(kFailed), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::connect);
}

TEST(DataAction, ADisconnectionReplacesTheConnectionAtOnce) {
    DataAction action;
    action.Ask(Kind::connect, kByModem);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByModem), Kind::disconnect);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, AConnectionWaitsForTheAnswerToTheDisconnection) {
    DataAction action = Connected();
    action.Ask(Kind::disconnect, kByModem);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
    action.Update(SYS_DATA_CONNECTION_DISCONNECTING, kNoManager);
    action.Update(SYS_DATA_CONNECTION_READY, kNoManager);
    EXPECT_EQ(action.Answered(kDone), Kind::connect);
    EXPECT_EQ(action.WaitsFor(), Wait::answer);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kNoManager);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTED);
}

TEST(DataAction, AFailedDisconnectionDoesNotEndTheConnectionThatWaitsForIt) {
    DataAction action = Connected();
    action.Ask(Kind::disconnect, kByModem);
    action.Ask(Kind::connect, kByModem);
    EXPECT_EQ(action.Answered(kFailed), Kind::connect);
}

TEST(DataAction, OfManyActionsTheLastOneCounts) {
    DataAction action;
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::connect);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByModem), Kind::disconnect);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::none);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByModem), Kind::none);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, ADisconnectionWaitsUntilNetworkManagerHasSaidWhatItHasBegun) {
    DataAction action;
    EXPECT_EQ(action.Ask(Kind::connect, kByManager), Kind::connect);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByManager), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    EXPECT_EQ(action.WaitsFor(), Wait::answer);
    EXPECT_EQ(action.Answered(kDone), Kind::disconnect);
    EXPECT_EQ(action.Answered(kDone), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, NetworkManagerAnswersBeforeItBegins) {
    DataAction action;
    action.Ask(Kind::connect, kByModem);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.WaitsFor(), Wait::sign);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    EXPECT_EQ(action.WaitsFor(), Wait::manager);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kActive);
    EXPECT_EQ(action.WaitsFor(), Wait::nothing);
}

TEST(DataAction, ANetworkManagerThatGivesUpEndsTheAction) {
    DataAction action;
    action.Ask(Kind::connect, kByModem);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, ADisconnectionLastsUntilNetworkManagerHasEnded) {
    DataAction action;
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kActive);
    action.Ask(Kind::disconnect, kByModem);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, WhatIsBeingEndedIsNotTheConnectionThatIsWanted) {
    DataAction action;
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kActive);
    action.Ask(Kind::disconnect, kByManager);
    // NetworkManager answers before the modem has disconnected.
    action.Answered(kDone);
    EXPECT_EQ(action.Ask(Kind::connect, kByManager), Kind::connect);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kEnding);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTING);
    action.Update(SYS_DATA_CONNECTION_READY, kEnding);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.WaitsFor(), Wait::sign);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    EXPECT_EQ(action.WaitsFor(), Wait::manager);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kActive);
    EXPECT_EQ(action.WaitsFor(), Wait::nothing);
}

TEST(DataAction, AConnectionThatCouldNotBeEndedIsTheOneThatIsWanted) {
    DataAction action;
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kActive);
    action.Ask(Kind::disconnect, kByManager);
    action.Ask(Kind::connect, kByManager);
    EXPECT_EQ(action.Answered(kFailed), Kind::connect);
    action.Answered(kDone);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_CONNECTED);
}

TEST(DataAction, ADisconnectionOutlivesTheConnectionThatTheModemHasBegunBefore) {
    DataAction action;
    action.Ask(Kind::connect, kByManager);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByManager), Kind::disconnect);
    action.Answered(kDone);
    // The modem is still busy with the first, and tells nothing of it.
    action.Update(SYS_DATA_CONNECTION_READY, kEnding);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    EXPECT_EQ(action.WaitsFor(), Wait::manager);
    action.Update(SYS_DATA_CONNECTION_CONNECTED, kEnding);
    EXPECT_EQ(action.UnderWay(), Kind::disconnect);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.UnderWay(), Kind::none);
}

TEST(DataAction, WhatNetworkManagerHasOnlyAnnouncedIsEnded) {
    DataAction action;
    action.Ask(Kind::connect, kByManager);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kStarting);
    EXPECT_EQ(action.WaitsFor(), Wait::sign);
    EXPECT_EQ(action.Ask(Kind::disconnect, kByManager), Kind::disconnect);
}

TEST(DataAction, WhatNetworkManagerHasAnnouncedAndNotBegunHasFailed) {
    DataAction action;
    action.Ask(Kind::connect, kByManager);
    // What it has told before it answers is of another connection.
    action.Update(SYS_DATA_CONNECTION_READY, kStarting);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.UnderWay(), Kind::connect);
    action.Update(SYS_DATA_CONNECTION_READY, kStarting);
    action.Answered(kDone);
    EXPECT_EQ(action.UnderWay(), Kind::connect);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.UnderWay(), Kind::none);
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
}

TEST(DataAction, WhatNetworkManagerHasNotAnnouncedYetIsAwaited) {
    DataAction action;
    action.Ask(Kind::connect, kByManager);
    action.Answered(kDone);
    action.Update(SYS_DATA_CONNECTION_READY, kIdle);
    EXPECT_EQ(action.WaitsFor(), Wait::sign);
    action.Update(SYS_DATA_CONNECTION_READY, kStarting);
    action.Update(SYS_DATA_CONNECTION_READY, kActive);
    EXPECT_EQ(action.WaitsFor(), Wait::manager);
}

TEST(DataAction, WhatTakesTooLongIsGivenUp) {
    DataAction action;
    action.Ask(Kind::connect, kByModem);
    action.Answered(kDone);
    action.GiveUp();
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(action.WaitsFor(), Wait::nothing);
}

TEST(DataAction, AnActionDoesNotOutliveTheModem) {
    DataAction action = Connected();
    action.Ask(Kind::disconnect, kByModem);
    action.Ask(Kind::connect, kByModem);
    action.Forget();
    EXPECT_EQ(action.Status(), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(action.Ask(Kind::connect, kByModem), Kind::connect);
}

}  // namespace
