// What an object can be asked for, and what an object can be that embeds another (aggregation).

#include <vector>

#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

/// What the object of a class offers beside IUnknown, IDispatch and ISupportErrorInfo.
struct Offer {
  CLSID clsid;
  IID own;
  bool hasEvents;
};

const Offer kOffers[] = {
    {kClassOf<IAlert>, __uuidof(IAlert), true},
    {kClassOf<IBacktest>, __uuidof(IBacktest), true},
    {kClassOf<IScriptOutput>, __uuidof(IScriptOutput), true},
    {kClassOf<IValidate>, __uuidof(IValidate), false},
};

std::vector<IID> interfacesOf(const Offer& offer) {
  std::vector<IID> all = {IID_IUnknown, IID_IDispatch, offer.own, IID_ISupportErrorInfo};
  if (offer.hasEvents) all.push_back(IID_IConnectionPointContainer);
  return all;
}

ComPtr<IUnknown> askFor(IUnknown* object, REFIID iid) {
  ComPtr<IUnknown> found;
  EXPECT_EQ(object->QueryInterface(iid, reinterpret_cast<void**>(found.GetAddressOf())), S_OK);
  return found;
}

class Identity : public HostTest {
 protected:
  ComPtr<IUnknown> make(const Offer& offer) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(library.factory(offer.clsid)->CreateInstance(nullptr, IID_PPV_ARGS(&object)), S_OK);
    return object;
  }
};

TEST_F(Identity, EveryInterfaceLeadsToEveryOtherAndToOneIdentity) {
  for (const Offer& offer : kOffers) {
    const ComPtr<IUnknown> object = make(offer);
    for (const IID& from : interfacesOf(offer)) {
      const ComPtr<IUnknown> start = askFor(object.Get(), from);
      for (const IID& to : interfacesOf(offer)) {
        const ComPtr<IUnknown> end = askFor(start.Get(), to);
        EXPECT_EQ(askFor(end.Get(), from).Get(), start.Get());  // the same pointer at each question
        EXPECT_EQ(askFor(end.Get(), IID_IUnknown).Get(), object.Get());
      }
    }
  }
}

TEST_F(Identity, NothingElseIsOffered) {
  for (const Offer& offer : kOffers) {
    const ComPtr<IUnknown> object = make(offer);
    std::vector<IID> others = {IID_NULL,     IID_IConnectionPoint, IID_IClassFactory,
                               IID_IPersist, IID_IMarshal,         __uuidof(_IAlertEvents)};
    if (!offer.hasEvents) others.push_back(IID_IConnectionPointContainer);
    for (const Offer& other : kOffers) {
      if (other.own != offer.own) others.push_back(other.own);
    }
    for (const IID& iid : others) {
      void* found = this;
      EXPECT_EQ(object->QueryInterface(iid, &found), E_NOINTERFACE);
      EXPECT_EQ(found, nullptr);
    }
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  }
}

TEST_F(Identity, ReferencesAreCountedAcrossInterfaces) {
  for (const Offer& offer : kOffers) {
    ComPtr<IUnknown> object = make(offer);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    const ComPtr<IUnknown> errors = askFor(object.Get(), IID_ISupportErrorInfo);
    EXPECT_EQ(errors->AddRef(), 3u);
    EXPECT_EQ(object->Release(), 2u);
    object.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);  // the other interface keeps it
  }
}

TEST_F(Identity, ErrorInformationIsOfTheOwnInterfaceAlone) {
  for (const Offer& offer : kOffers) {
    const ComPtr<ISupportErrorInfo> errors = query<ISupportErrorInfo>(make(offer));
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(offer.own), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_NULL), S_FALSE);
  }
}

// ---- Aggregation

/// An object that embeds another and offers its interfaces as its own.
class Outer final : public IUnknown {
 public:
  ComPtr<IUnknown> inner;
  LONG references = 1;
  std::vector<IID> asked;  ///< what came through the inner object's interfaces or from outside

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    asked.push_back(iid);
    if (iid != IID_IUnknown) return inner->QueryInterface(iid, object);
    *object = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
};

TEST_F(Identity, AnEmbeddedObjectHandsOnToTheOuterOne) {
  for (const Offer& offer : kOffers) {
    Outer outer;
    ASSERT_EQ(library.factory(offer.clsid)->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner)), S_OK);
    EXPECT_EQ(outer.references, 1);  // the inner object does not keep the outer one
    for (const IID& iid : interfacesOf(offer)) {
      if (iid == IID_IUnknown) continue;
      const ComPtr<IUnknown> found = askFor(&outer, iid);
      EXPECT_EQ(outer.references, 2);
      EXPECT_EQ(found->AddRef(), 3u);
      EXPECT_EQ(found->Release(), 2u);
      EXPECT_EQ(askFor(found.Get(), IID_IUnknown).Get(), static_cast<IUnknown*>(&outer));
      outer.asked.clear();
      for (const IID& other : interfacesOf(offer)) {
        askFor(found.Get(), other);
        EXPECT_EQ(outer.asked.back(), other);
      }
    }
    EXPECT_EQ(outer.references, 1);
    // The inner identity is its own and counts for itself.
    EXPECT_EQ(askFor(outer.inner.Get(), IID_IUnknown).Get(), outer.inner.Get());
    EXPECT_EQ(outer.inner->AddRef(), 2u);
    EXPECT_EQ(outer.inner->Release(), 1u);
    EXPECT_EQ(outer.references, 1);
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);
    outer.inner.Reset();
    EXPECT_EQ(outer.references, 1);
    EXPECT_EQ(library.canUnloadNow(), S_OK);
  }
}

TEST_F(Identity, OnlyTheIdentityCanBeEmbedded) {
  for (const Offer& offer : kOffers) {
    Outer outer;
    for (const IID& iid : interfacesOf(offer)) {
      if (iid == IID_IUnknown) continue;
      void* object = this;
      EXPECT_EQ(library.factory(offer.clsid)->CreateInstance(&outer, iid, &object), CLASS_E_NOAGGREGATION);
      EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(outer.references, 1);
  }
}

TEST_F(Identity, AnEmbeddedObjectWorks) {
  Outer outer;
  ASSERT_EQ(library.factory(kClassOf<IAlert>)->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner)), S_OK);
  const auto alert = [&] {
    ComPtr<IAlert> found;
    EXPECT_EQ(outer.QueryInterface(IID_PPV_ARGS(&found)), S_OK);
    return found;
  };
  DWORD cookie = 0;
  const ComPtr<Sink> sink = connect(alert(), &cookie);
  EXPECT_EQ(outer.references, 1);  // a connection keeps the sink, not the component
  for (int day = 1; day <= 5; ++day) EXPECT_EQ(alert()->AppendRecord(day, 1, 1, 1, 1, 1, 7.5), S_OK);
  EXPECT_EQ(call(alert(), &IAlert::put_AlertScript, L"CLOSE > 0"), S_OK);
  EXPECT_EQ(sink->take(), Lines{L"1: '' '' R8 7.5 R8 1"});
  EXPECT_EQ(pointOf(alert())->Unadvise(cookie), S_OK);
  DISPPARAMS none{};
  VARIANT count;
  VariantInit(&count);
  EXPECT_EQ(
      alert()->Invoke(6, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYGET, &none, &count, nullptr, nullptr),
      S_OK);
  EXPECT_EQ(count.vt, VT_I4);
  EXPECT_EQ(count.lVal, 5);
  EXPECT_EQ(outer.references, 1);
}

TEST_F(Identity, AnEmbeddedObjectsSinkIsLetGoWithIt) {
  Outer outer;
  ASSERT_EQ(library.factory(kClassOf<IBacktest>)->CreateInstance(&outer, IID_PPV_ARGS(&outer.inner)), S_OK);
  ComPtr<IBacktest> backtest;
  EXPECT_EQ(outer.QueryInterface(IID_PPV_ARGS(&backtest)), S_OK);
  const ComPtr<Sink> sink = connect(backtest);
  backtest.Reset();
  EXPECT_EQ(sink->references(), 2);
  outer.inner.Reset();
  EXPECT_EQ(sink->references(), 1);
}

}  // namespace
}  // namespace brindlewort::hosts
