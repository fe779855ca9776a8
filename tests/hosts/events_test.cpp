// Events as they reach a sink: the raw order of the arguments, which is part of the contract with hosts in
// use.

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

using Events = HostTest;

void expectPlainCall(const EventCall& event) {
  EXPECT_EQ(event.flags, DISPATCH_METHOD);
  EXPECT_EQ(event.namedArguments, 0u);
  EXPECT_TRUE(event.reservedIsNull);
  EXPECT_FALSE(event.hasResult);
  EXPECT_FALSE(event.hasException);
}

TEST_F(Events, AnAlertHasFourArgumentsWithTheNameFirst) {
  const ComPtr<IAlert> alert = library.make<IAlert>();
  const ComPtr<Sink> sink = connect(alert);
  call(alert, &IAlert::put_Symbol, L"the symbol");
  call(alert, &IAlert::put_AlertName, L"the name");
  call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
  appendAll(alert, {1, 1, 1, 1});
  EXPECT_EQ(alert->AppendRecord(dateOf(5), 1, 3, 1, 2.25, 100, 2444299.75), S_OK);
  ASSERT_EQ(sink->events.size(), 1u);
  const EventCall& event = sink->events[0];
  EXPECT_EQ(event.id, 1);
  EXPECT_EQ(event.arguments, (Lines{L"'the name'", L"'the symbol'", L"R8 2444299.75", L"R8 2.25"}));
  expectPlainCall(event);
}

TEST_F(Events, AnErrorOfAnAlertIsReversed) {
  const ComPtr<IAlert> alert = library.make<IAlert>();
  const ComPtr<Sink> sink = connect(alert);
  call(alert, &IAlert::put_Symbol, L"the symbol");
  call(alert, &IAlert::put_AlertName, L"the name");
  appendAll(alert, {1, 1, 1, 1, 1});
  call(alert, &IAlert::put_AlertScript, L"CLOSE > FOO");
  ASSERT_EQ(sink->events.size(), 1u);
  const EventCall& event = sink->events[0];
  EXPECT_EQ(event.id, 2);
  EXPECT_EQ(event.arguments, (Lines{L"'Error: Undefined variable 'FOO''", L"'the name'", L"'the symbol'"}));
  expectPlainCall(event);
}

TEST_F(Events, EmptyTextsAreEmptyAndNotNull) {
  const ComPtr<IAlert> alert = library.make<IAlert>();
  const ComPtr<Sink> sink = connect(alert);
  appendAll(alert, {1, 1, 1, 1, 1});
  call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
  EXPECT_EQ(sink->take(), Lines{L"1: '' '' R8 2451549 R8 1"});
}

TEST_F(Events, AnErrorOfABacktestOrAnOutputHasItsDescriptionAlone) {
  const ComPtr<IBacktest> backtest = library.make<IBacktest>();
  const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  const ComPtr<Sink> ofBacktest = connect(backtest), ofOutput = connect(output);
  for (int day = 1; day <= 8; ++day) {
    append(backtest, day, day);
    append(output, day, day);
  }
  textOf(backtest, &IBacktest::Backtest, L"CLOSE > FOO", L"", L"", L"", 0.0, L"");
  textOf(output, &IScriptOutput::GetScriptOutput, L"CLOSE > FOO", 0, L"");
  for (const ComPtr<Sink>& sink : {ofBacktest, ofOutput}) {
    ASSERT_EQ(sink->events.size(), 1u);
    expectPlainCall(sink->events[0]);
    EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
  }
}

}  // namespace
}  // namespace brindlewort::hosts
