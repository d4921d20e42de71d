// The directory through the broker: two objects find one another and pass a message, and every code of the family.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"

namespace {

class ConnectionMethods : public BrokerProcessTest {
 protected:
  HRESULT Dispatch(const std::string& bytes, ULONG version = 8, ULONG format = 1) {
    return broker->BrokerLcdDispatchMessage(ByteArray(bytes).Get(), version, format, 0);
  }
  const BString name{L"player-\x00E9"};
  const std::string message{"\x02\0\x09player-\xC3\xA9 hello", 18};
};

TEST_F(ConnectionMethods, TwoPlayersPassAMessage) {
  ComPtr<ILumenBroker6> other;
  ASSERT_EQ(broker_process::Activate(other), S_OK);
  BString target;
  ByteArray data(nullptr);
  EXPECT_EQ(Dispatch(message), E_INVALIDARG) << "nobody listens";
  EXPECT_EQ(other->BrokerLcdTryAddConnection(name.Get(), 0, 0, '3'), S_OK);
  EXPECT_EQ(broker->BrokerLcdTryAddConnection(name.Get(), 2, 2, '3'), S_FALSE) << "the name is taken";
  for (const auto& [realm, found] : {std::pair{0u, 3}, {1u, 0}}) {
    LONG format = 7;
    EXPECT_EQ(broker->BrokerLcdFindConnectionFormat(name.Get(), realm, &format), found == 0 ? S_FALSE : S_OK);
    EXPECT_EQ(format, found);
  }
  EXPECT_EQ(other->BrokerLcdGetMessageTarget(target.Receive()), S_FALSE);
  EXPECT_EQ(other->BrokerLcdGetMessageData(data.Receive()), S_FALSE);
  EXPECT_EQ(Dispatch(message, 11, 3), S_OK);
  EXPECT_EQ(other->BrokerLcdGetMessageTarget(target.Receive()), S_OK);
  EXPECT_EQ(target.View(), name.View());
  EXPECT_EQ(other->BrokerLcdGetMessageData(data.Receive()), S_OK);
  EXPECT_EQ(data.Text(), message);
  EXPECT_EQ(Dispatch(message, 11, 3), S_FALSE) << "the slot is taken";
  EXPECT_EQ(other->BrokerLcdPruneDeadMessage(), S_FALSE);
  EXPECT_EQ(other->BrokerLcdClearMessage(), S_OK);
  EXPECT_EQ(Dispatch(message, 11, 9), E_INVALIDARG) << "another format";
  EXPECT_EQ(other->BrokerLcdRemoveConnection(name.Get(), 0), S_OK);
  EXPECT_EQ(other->BrokerLcdRemoveConnection(name.Get(), 0), S_FALSE);
}

TEST_F(ConnectionMethods, TheLockNestsAndKeepsItsTime) {
  LONG count = 0, time[2] = {}, timeout = 0;
  for (const LONG hold : {1, 2}) {
    EXPECT_EQ(broker->BrokerLcdLock(&count), S_OK);
    EXPECT_EQ(count, hold);
    EXPECT_EQ(broker->BrokerLcdLockTime(&time[hold - 1]), S_OK);
  }
  EXPECT_EQ(time[1], time[0]);
  for (const LONG hold : {1, 0, 0}) {
    EXPECT_EQ(broker->BrokerLcdUnlock(&count), S_OK);
    EXPECT_EQ(count, hold) << "one too many is ignored";
  }
  EXPECT_EQ(broker->BrokerLcdMessageTimeout(&timeout), S_OK);
  EXPECT_EQ(timeout, 5000);
}

}  // namespace
