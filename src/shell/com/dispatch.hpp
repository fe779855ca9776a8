#pragma once

#include <oaidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <vector>

namespace brindlewort::com {

/// Late-bound calls of one object by its interface's type information.
///
/// A host may give anything for a member's out-parameter: a variable of the exact type by reference, a
/// variant by reference (the only kind that some script languages have), or a plain value. The call gets a
/// place of its own for it; afterwards the host's variable takes the result, a variant with the parameter's
/// type, another with the result converted to its own. It stays as it is when the member answers false.
class Dispatch {
 public:
  explicit Dispatch(REFIID iid) : iid_(iid) {}

  HRESULT typeInfo(ITypeInfo** info);
  HRESULT idsOfNames(LPOLESTR* names, UINT count, DISPID* ids);
  HRESULT invoke(IDispatch* object, DISPID member, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                 EXCEPINFO* exception, UINT* faultyArgument);

 private:
  /// An out-parameter of a member: its place among the parameters and the type of what it points to.
  struct OutParameter {
    DISPID member;
    UINT place;
    VARTYPE type;
  };

  /// What a call writes into in stead of a host's argument.
  struct OutPlace {
    VARIANT* given;  ///< the host's argument
    VARIANT value;   ///< of the parameter's type
  };

  /// Gives the member's out-parameters places, and puts references to them into the arguments that it takes.
  std::vector<OutPlace> givePlaces(DISPID member, const DISPPARAMS& arguments,
                                   std::vector<VARIANTARG>& taken) const;
  HRESULT makeReady();
  HRESULT listOutParameters();
  void listOutParameters(const FUNCDESC& member);

  IID iid_;
  Microsoft::WRL::ComPtr<ITypeInfo> info_;  ///< null before the first late-bound call
  std::vector<OutParameter> outParameters_;
};

}  // namespace brindlewort::com
