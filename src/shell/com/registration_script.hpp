#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Registration scripts: the keys of a class in the registry, as a text.
///
///     HKCR
///     {
///       NoRemove CLSID
///       {
///         ForceRemove {83392496-...} = s 'Alert Class'
///         {
///           InprocServer32 = s '%MODULE%'
///           {
///             val ThreadingModel = s 'Apartment'
///           }
///         }
///       }
///     }
///
/// A name without blanks may stand without quotes. `val` gives the key above a named value; `= s` behind a
/// key is the value without a name. %MODULE% in a value stands for the file of the library.
namespace brindlewort::com {

/// What becomes of a key that is there already, and of one when the class leaves.
enum class KeyPolicy {
  kPlain,        ///< stays and is added to; leaves with all that it holds
  kForceRemove,  ///< is emptied first; leaves with all that it holds
  kNoRemove,     ///< belongs to others: stays, then and later
};

struct RegistryKey {
  std::wstring name;
  KeyPolicy policy = KeyPolicy::kPlain;
  std::optional<std::wstring> defaultValue;
  std::vector<std::pair<std::wstring, std::wstring>> values;
  std::vector<RegistryKey> keys;
};

/// The keys beneath the root of classes; nothing for a text that is no script.
std::optional<std::vector<RegistryKey>> readRegistrationScript(std::wstring_view script,
                                                               std::wstring_view module);

}  // namespace brindlewort::com
