// Connection points: how hosts find the place for their sinks, connect them and take them away.

#include <vector>

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

class ConnectionPoints : public HostTest {
 protected:
  void SetUp() override {
    call(alert, &IAlert::put_Symbol, L"SYM");
    call(alert, &IAlert::put_AlertName, L"name");
    call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
    appendAll(alert, {1, 1, 1, 1});
  }
  void TearDown() override {
    alert.Reset();
    HostTest::TearDown();
  }
  /// The next bar makes the script fire, each one once.
  void fire() { append(alert, ++day_, 1); }

  ComPtr<IAlert> alert = library.make<IAlert>();

 private:
  int day_ = 4;
};

// ---- Finding

TEST_F(ConnectionPoints, OneIsFoundByItsInterface) {
  const auto check = [](const auto& object, REFIID events) {
    const auto container = query<IConnectionPointContainer>(object);
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(container->FindConnectionPoint(events, &point), S_OK);
    IID iid = IID_NULL;
    EXPECT_EQ(point->GetConnectionInterface(&iid), S_OK);
    EXPECT_EQ(iid, events);
    ComPtr<IConnectionPointContainer> back;
    EXPECT_EQ(point->GetConnectionPointContainer(&back), S_OK);
    EXPECT_EQ(back.Get(), container.Get());
    EXPECT_EQ(point->GetConnectionInterface(nullptr), E_POINTER);
    EXPECT_EQ(point->GetConnectionPointContainer(nullptr), E_POINTER);

    for (const IID& other : {IID_NULL, IID_IDispatch, IID_IPropertyNotifySink}) {
      ComPtr<IConnectionPoint> none;
      EXPECT_EQ(container->FindConnectionPoint(other, &none), CONNECT_E_NOCONNECTION);
      EXPECT_EQ(none.Get(), nullptr);
    }
    EXPECT_EQ(container->FindConnectionPoint(events, nullptr), E_POINTER);
  };
  check(alert, kEventsOf<IAlert>);
  check(library.make<IBacktest>(), kEventsOf<IBacktest>);
  check(library.make<IScriptOutput>(), kEventsOf<IScriptOutput>);
}

TEST_F(ConnectionPoints, OneHasAnIdentityOfItsOwnAndKeepsTheComponent) {
  const ComPtr<IConnectionPoint> point = pointOf(alert);
  EXPECT_EQ(query<IUnknown>(point).Get(), static_cast<IUnknown*>(point.Get()));
  EXPECT_NE(query<IUnknown>(point).Get(), query<IUnknown>(alert).Get());
  EXPECT_EQ(query<IConnectionPoint>(point).Get(), point.Get());
  void* none = this;
  EXPECT_EQ(point->QueryInterface(__uuidof(IAlert), &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
  alert.Reset();
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
}

TEST_F(ConnectionPoints, TheyAreEnumerated) {
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(query<IConnectionPointContainer>(alert)->EnumConnectionPoints(&points), S_OK);
  IConnectionPoint* found[2] = {};
  ULONG count = 7;
  EXPECT_EQ(points->Next(2, found, &count), S_FALSE);
  ASSERT_EQ(count, 1u);
  EXPECT_EQ(found[0], pointOf(alert).Get());
  found[0]->Release();
  EXPECT_EQ(points->Next(1, found, &count), S_FALSE);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(points->Reset(), S_OK);
  EXPECT_EQ(points->Next(1, found, nullptr), S_OK);
  found[0]->Release();
  EXPECT_EQ(points->Reset(), S_OK);
  EXPECT_EQ(points->Skip(1), S_OK);
  EXPECT_EQ(points->Skip(1), S_FALSE);
  ComPtr<IEnumConnectionPoints> copy;
  EXPECT_EQ(points->Clone(&copy), S_OK);  // stands where the other one stands
  EXPECT_EQ(copy->Next(1, found, nullptr), S_FALSE);
  EXPECT_EQ(copy->Reset(), S_OK);
  EXPECT_EQ(copy->Next(1, found, nullptr), S_OK);
  found[0]->Release();
  EXPECT_EQ(points->Next(2, found, nullptr), E_POINTER);  // several need the count
  EXPECT_EQ(points->Next(1, nullptr, &count), E_POINTER);
  EXPECT_EQ(points->Clone(nullptr), E_POINTER);
  EXPECT_EQ(query<IConnectionPointContainer>(alert)->EnumConnectionPoints(nullptr), E_POINTER);
}

// ---- Connecting

TEST_F(ConnectionPoints, ASinkWithoutTheInterfaceCannotConnect) {
  const ComPtr<Sink> other = Sink::make(kEventsOf<IBacktest>);
  DWORD cookie = 77;
  EXPECT_EQ(pointOf(alert)->Advise(other.Get(), &cookie), CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(other->references(), 1);
  EXPECT_EQ(pointOf(alert)->Advise(nullptr, &cookie), E_POINTER);
  const ComPtr<Sink> good = Sink::make(kEventsOf<IAlert>);
  EXPECT_EQ(pointOf(alert)->Advise(good.Get(), nullptr), E_POINTER);
  EXPECT_EQ(good->references(), 1);
}

TEST_F(ConnectionPoints, SinksAreToldInTheOrderOfTheirConnection) {
  std::vector<int> order;
  std::vector<ComPtr<Sink>> sinks;
  for (int i = 0; i < 5; ++i) {
    sinks.push_back(connect(alert));
    sinks.back()->react = [&order, i] {
      order.push_back(i);
      return S_OK;
    };
  }
  fire();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
  for (const auto& sink : sinks) EXPECT_EQ(sink->take(), Lines{L"1: 'name' 'SYM' R8 2451549 R8 1"});
}

TEST_F(ConnectionPoints, APlaceThatWasLeftIsNotPassedOn) {
  DWORD first = 0, second = 0;
  std::vector<int> order;
  const auto writes = [&order](int number) {
    return [&order, number] {
      order.push_back(number);
      return S_OK;
    };
  };
  const ComPtr<Sink> a = connect(alert, &first), b = connect(alert, &second);
  EXPECT_EQ(pointOf(alert)->Unadvise(first), S_OK);
  const ComPtr<Sink> c = connect(alert);
  b->react = writes(2);
  c->react = writes(3);
  fire();
  EXPECT_EQ(order, (std::vector<int>{2, 3}));
  EXPECT_TRUE(a->events.empty());
}

TEST_F(ConnectionPoints, OneSinkMayConnectTwice) {
  const ComPtr<Sink> sink = Sink::make(kEventsOf<IAlert>);
  DWORD first = 0, second = 0;
  EXPECT_EQ(pointOf(alert)->Advise(sink.Get(), &first), S_OK);
  EXPECT_EQ(pointOf(alert)->Advise(sink.Get(), &second), S_OK);
  EXPECT_NE(first, second);
  fire();
  EXPECT_EQ(sink->take().size(), 2u);
  EXPECT_EQ(pointOf(alert)->Unadvise(first), S_OK);
  fire();
  EXPECT_EQ(sink->take().size(), 1u);
}

TEST_F(ConnectionPoints, AFailingSinkKeepsNobodyFromTheEvent) {
  const ComPtr<Sink> first = connect(alert), second = connect(alert);
  first->react = [] { return E_FAIL; };
  fire();
  fire();
  EXPECT_EQ(first->take().size(), 2u);
  EXPECT_EQ(second->take().size(), 2u);
}

TEST_F(ConnectionPoints, UnadviseLetsGo) {
  DWORD cookie = 0;
  const ComPtr<Sink> sink = connect(alert, &cookie);
  EXPECT_EQ(sink->references(), 2);
  EXPECT_EQ(pointOf(alert)->Unadvise(cookie), S_OK);
  EXPECT_EQ(sink->references(), 1);
  fire();
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(pointOf(alert)->Unadvise(cookie), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(pointOf(alert)->Unadvise(0), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(pointOf(alert)->Unadvise(4'711), CONNECT_E_NOCONNECTION);
}

TEST_F(ConnectionPoints, TheComponentLetsGoOfItsSinksAtItsEnd) {
  const ComPtr<Sink> sink = connect(alert);
  alert.Reset();
  EXPECT_EQ(sink->references(), 1);
}

TEST_F(ConnectionPoints, ConnectionsAreEnumerated) {
  DWORD cookies[3];
  const ComPtr<Sink> sinks[] = {connect(alert, &cookies[0]), connect(alert, &cookies[1]),
                                connect(alert, &cookies[2])};
  pointOf(alert)->Unadvise(cookies[1]);
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(pointOf(alert)->EnumConnections(&connections), S_OK);
  pointOf(alert)->Unadvise(cookies[0]);  // the list is that of before
  CONNECTDATA found[3] = {};
  ULONG count = 0;
  EXPECT_EQ(connections->Next(3, found, &count), S_FALSE);
  ASSERT_EQ(count, 2u);
  for (int i : {0, 1}) {
    EXPECT_EQ(found[i].dwCookie, cookies[2 * i]);
    EXPECT_EQ(found[i].pUnk, static_cast<IUnknown*>(sinks[2 * i].Get()));
    found[i].pUnk->Release();
  }
  EXPECT_EQ(pointOf(alert)->EnumConnections(nullptr), E_POINTER);
  connections.Reset();
  EXPECT_EQ(sinks[0]->references(), 1);
}

// ---- Sinks that act within an event

TEST_F(ConnectionPoints, ASinkMayDisconnectItself) {
  DWORD cookie = 0;
  const ComPtr<Sink> once = connect(alert, &cookie), always = connect(alert);
  once->react = [&] { return pointOf(alert)->Unadvise(cookie); };
  fire();
  fire();
  EXPECT_EQ(once->take().size(), 1u);
  EXPECT_EQ(always->take().size(), 2u);
  EXPECT_EQ(once->references(), 1);
}

TEST_F(ConnectionPoints, ASinkMayDisconnectALaterOne) {
  DWORD cookie = 0;
  const ComPtr<Sink> first = connect(alert), second = connect(alert, &cookie), third = connect(alert);
  first->react = [&] { return pointOf(alert)->Unadvise(cookie); };
  fire();
  EXPECT_EQ(second->take(), Lines{});
  EXPECT_EQ(third->take().size(), 1u);
  EXPECT_EQ(second->references(), 1);
}

TEST_F(ConnectionPoints, ASinkMayDisconnectAnEarlierOne) {
  DWORD cookie = 0;
  const ComPtr<Sink> first = connect(alert, &cookie), second = connect(alert), third = connect(alert);
  second->react = [&] { return pointOf(alert)->Unadvise(cookie); };
  fire();
  fire();
  EXPECT_EQ(first->take().size(), 1u);
  EXPECT_EQ(second->take().size(), 2u);
  EXPECT_EQ(third->take().size(), 2u);
}

TEST_F(ConnectionPoints, ASinkThatConnectsWithinAnEventHearsOfTheNext) {
  const ComPtr<Sink> first = connect(alert);
  std::vector<ComPtr<Sink>> later;
  first->react = [&] {
    for (int i = 0; i < 20; ++i) later.push_back(connect(alert));  // the list must move to grow
    first->react = [] { return S_OK; };
    return S_OK;
  };
  fire();
  ASSERT_EQ(later.size(), 20u);
  for (const auto& sink : later) EXPECT_EQ(sink->take(), Lines{});
  fire();
  for (const auto& sink : later) EXPECT_EQ(sink->take().size(), 1u);
}

TEST_F(ConnectionPoints, ASinkMayReleaseTheComponent) {
  const ComPtr<Sink> first = connect(alert), second = connect(alert);
  first->react = [&] {
    alert.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);  // it lives on to the end of the call
    return S_OK;
  };
  IAlert* const called = alert.Get();
  EXPECT_EQ(called->AppendRecord(dateOf(5), 1, 1, 1, 1, 1, lastTradeOf(5)), S_OK);
  EXPECT_EQ(second->take().size(), 1u);
  EXPECT_EQ(library.canUnloadNow(), S_OK);
  EXPECT_EQ(first->references(), 1);
}

TEST_F(ConnectionPoints, TheLastSinkMayReleaseTheComponentsOfOtherKinds) {
  ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  ComPtr<IBacktest> backtest = library.make<IBacktest>();
  const ComPtr<Sink> ofOutput = connect(output), ofBacktest = connect(backtest);
  for (int day = 1; day <= 8; ++day) append(output, day, 1), append(backtest, day, 1);
  IScriptOutput* const calledOutput = output.Get();
  IBacktest* const calledBacktest = backtest.Get();
  ofOutput->react = [&] { return output.Reset(), S_OK; };
  ofBacktest->react = [&] { return backtest.Reset(), S_OK; };
  const Text script(L"FOO > 1");
  Text text, report;
  EXPECT_EQ(calledOutput->GetScriptOutput(script, 0, nullptr, text.place()), S_OK);
  EXPECT_EQ(calledBacktest->Backtest(script, nullptr, nullptr, nullptr, 0, nullptr, report.place()), S_OK);
  EXPECT_EQ(output.Get(), nullptr);
  EXPECT_EQ(backtest.Get(), nullptr);
  EXPECT_EQ(ofOutput->references(), 1);
  EXPECT_EQ(ofBacktest->references(), 1);
}

TEST_F(ConnectionPoints, ASinkMayCallTheComponent) {
  const ComPtr<Sink> sink = connect(alert);
  int depth = 0;
  sink->react = [&] {
    EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"SYM");
    EXPECT_EQ(call(alert, &IAlert::put_AlertName, L"other"), S_OK);
    if (++depth < 3) fire();
    return S_OK;
  };
  fire();
  EXPECT_EQ(sink->take(), (Lines{L"1: 'name' 'SYM' R8 2451549 R8 1", L"1: 'other' 'SYM' R8 2451550 R8 1",
                                 L"1: 'other' 'SYM' R8 2451551 R8 1"}));
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 7);
}

TEST_F(ConnectionPoints, ASinkMayDisconnectAllWithinAnEventWithinAnEvent) {
  std::vector<DWORD> cookies(3);
  std::vector<ComPtr<Sink>> sinks;
  for (DWORD& cookie : cookies) sinks.push_back(connect(alert, &cookie));
  sinks[0]->react = [&] {
    if (sinks[0]->events.size() == 1) {
      fire();
    } else {
      for (DWORD cookie : cookies) pointOf(alert)->Unadvise(cookie);
    }
    return S_OK;
  };
  fire();
  EXPECT_EQ(sinks[0]->take().size(), 2u);
  EXPECT_EQ(sinks[1]->take(), Lines{});
  EXPECT_EQ(sinks[2]->take(), Lines{});
  for (const auto& sink : sinks) EXPECT_EQ(sink->references(), 1);
}

TEST_F(ConnectionPoints, ASinkMayClearTheBarsAndTheScript) {
  const ComPtr<Sink> first = connect(alert), second = connect(alert);
  first->react = [&] {
    EXPECT_EQ(alert->ClearRecords(), S_OK);
    EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L""), S_OK);
    EXPECT_EQ(call(alert, &IAlert::put_Symbol, L"gone"), S_OK);
    return S_OK;
  };
  fire();
  EXPECT_EQ(second->take(), Lines{L"1: 'name' 'SYM' R8 2451549 R8 1"});
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 0);
}

}  // namespace
}  // namespace brindlewort::hosts
