#include "shell/com/dispatch.hpp"

#include <oleauto.h>

#include <algorithm>

#include "shell/com/type_library.hpp"

namespace brindlewort::com {

namespace {

/// Where the argument of a parameter stands: named ones come first, the others in reverse order. Nothing when
/// the host does not give it.
VARIANTARG* argumentOf(const DISPPARAMS& arguments, UINT place) {
  const UINT named = arguments.cNamedArgs;
  const DISPID* const names = arguments.rgdispidNamedArgs;
  const DISPID* const name = std::find(names, names + named, static_cast<DISPID>(place));
  if (name != names + named) return &arguments.rgvarg[name - names];
  return place < arguments.cArgs - named ? &arguments.rgvarg[arguments.cArgs - 1 - place] : nullptr;
}

VARIANT zero(VARTYPE type) {
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  return value;
}

/// A reference to the value, as the call takes it.
VARIANT referenceTo(VARIANT& value) {
  VARIANT reference;
  VariantInit(&reference);
  reference.vt = static_cast<VARTYPE>(VT_BYREF | value.vt);
  reference.byref = &value.ullVal;
  return reference;
}

std::size_t sizeOfNumber(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_DATE:
    case VT_CY:
      return 8;
    default:
      return 0;
  }
}

/// Gives the result to the host's variable. A plain value has none; a number that the variable's own type
/// cannot hold leaves it as it is.
void writeBack(VARIANT& given, VARIANT& value) {
  if (given.vt == (VT_BYREF | VT_VARIANT)) {
    if (given.pvarVal && SUCCEEDED(VariantClear(given.pvarVal))) *given.pvarVal = value;
    return;
  }
  const VARTYPE type = static_cast<VARTYPE>(given.vt & ~VT_BYREF);
  const std::size_t size = (given.vt & VT_BYREF) != 0 ? sizeOfNumber(type) : 0;
  if (size == 0 || !given.byref) return;
  VARIANT converted;
  VariantInit(&converted);
  if (SUCCEEDED(VariantChangeType(&converted, &value, 0, type))) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&converted.ullVal);
    std::copy_n(bytes, size, static_cast<unsigned char*>(given.byref));
  }
}

}  // namespace

HRESULT Dispatch::typeInfo(ITypeInfo** info) {
  const HRESULT result = makeReady();
  return FAILED(result) ? result : info_.CopyTo(info);
}

HRESULT Dispatch::idsOfNames(LPOLESTR* names, UINT count, DISPID* ids) {
  const HRESULT result = makeReady();
  return FAILED(result) ? result : info_->GetIDsOfNames(names, count, ids);
}

HRESULT Dispatch::invoke(IDispatch* object, DISPID member, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                         EXCEPINFO* exception, UINT* faultyArgument) {
  if (!arguments) return E_INVALIDARG;
  if (arguments->cNamedArgs > arguments->cArgs) return DISP_E_BADPARAMCOUNT;
  if (const HRESULT ready = makeReady(); FAILED(ready)) return ready;

  std::vector<VARIANTARG> taken(arguments->rgvarg, arguments->rgvarg + arguments->cArgs);
  std::vector<OutPlace> places = givePlaces(member, *arguments, taken);
  DISPPARAMS call = *arguments;
  call.rgvarg = taken.data();
  VARIANT unasked;
  VariantInit(&unasked);
  VARIANT& told = result ? *result : unasked;
  const HRESULT outcome = info_->Invoke(
      object, member, flags, &call, result || !places.empty() ? &told : nullptr, exception, faultyArgument);
  if (FAILED(outcome)) return outcome;
  // A query that finds nothing says so, and leaves the host's variables as they are.
  if (told.vt != VT_BOOL || told.boolVal != VARIANT_FALSE) {
    for (OutPlace& place : places) writeBack(*place.given, place.value);
  }
  // Script languages know the 32-bit integer by one of its two names only.
  if (told.vt == VT_INT) told.vt = VT_I4;
  return outcome;
}

std::vector<Dispatch::OutPlace> Dispatch::givePlaces(DISPID member, const DISPPARAMS& arguments,
                                                     std::vector<VARIANTARG>& taken) const {
  std::vector<OutPlace> places;
  places.reserve(outParameters_.size());  // the call holds their addresses
  for (const OutParameter& parameter : outParameters_) {
    if (parameter.member != member) continue;
    VARIANTARG* const given = argumentOf(arguments, parameter.place);
    if (!given || given->vt == (VT_BYREF | parameter.type)) continue;
    places.push_back({given, zero(parameter.type)});
    taken[static_cast<std::size_t>(given - arguments.rgvarg)] = referenceTo(places.back().value);
  }
  return places;
}

HRESULT Dispatch::makeReady() {
  if (info_) return S_OK;
  HRESULT result = typeInfoOf(iid_, &info_);
  if (SUCCEEDED(result)) result = listOutParameters();
  if (FAILED(result)) info_.Reset();
  return result;
}

HRESULT Dispatch::listOutParameters() {
  TYPEATTR* attributes = nullptr;
  if (const HRESULT result = info_->GetTypeAttr(&attributes); FAILED(result)) return result;
  const UINT members = attributes->cFuncs;
  info_->ReleaseTypeAttr(attributes);
  outParameters_.clear();
  for (UINT i = 0; i < members; ++i) {
    // Some systems count the members that every automation interface has, and do not tell of them.
    FUNCDESC* member = nullptr;
    if (FAILED(info_->GetFuncDesc(i, &member))) continue;
    listOutParameters(*member);
    info_->ReleaseFuncDesc(member);
  }
  return S_OK;
}

void Dispatch::listOutParameters(const FUNCDESC& member) {
  for (UINT place = 0; place < static_cast<UINT>(member.cParams); ++place) {
    const ELEMDESC& parameter = member.lprgelemdescParam[place];
    if (parameter.tdesc.vt != VT_PTR || (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) continue;
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FOUT) == 0) continue;
    outParameters_.push_back({member.memid, place, parameter.tdesc.lptdesc->vt});
  }
}

}  // namespace brindlewort::com
