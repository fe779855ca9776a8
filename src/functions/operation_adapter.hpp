#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "functions/function_table.hpp"

/// Makes a table operation out of a kernel by the kernel's own parameter list: series, periods and numbers
/// are taken from the slots in their order, an enumeration from the name's output, and prices from the run.
namespace brindlewort {

namespace adapter {

template <class T>
inline constexpr bool takesSlot = std::is_same_v<T, View> || std::is_same_v<T, Source> ||
                                  std::is_same_v<T, Count> || std::is_same_v<T, double>;

template <class T>
decltype(auto) argument(const Arguments& arguments, std::size_t slot, Out out) {
  if constexpr (std::is_same_v<T, View>) {
    return arguments.view(slot);
  } else if constexpr (std::is_same_v<T, Count>) {
    return arguments.period(slot);
  } else if constexpr (std::is_same_v<T, double>) {
    return arguments.number(slot);
  } else if constexpr (std::is_same_v<T, const Prices&>) {
    return (arguments.prices);
  } else if constexpr (std::is_same_v<T, Out>) {
    return Out(out);
  } else {
    static_assert(std::is_enum_v<T>,
                  "a kernel takes series, periods, numbers, prices and an output selector");
    return static_cast<T>(arguments.output);
  }
}

template <class T>
decltype(auto) argument(const IncrementalArguments& arguments, std::size_t slot, const Target& out) {
  if constexpr (std::is_same_v<T, Source>) {
    return arguments.source(slot);
  } else if constexpr (std::is_same_v<T, Count>) {
    return arguments.period(slot);
  } else if constexpr (std::is_same_v<T, double>) {
    return arguments.number(slot);
  } else if constexpr (std::is_same_v<T, WorkStore&>) {
    return (arguments.store);
  } else if constexpr (std::is_same_v<T, const PriceSources&>) {
    return (arguments.prices);
  } else if constexpr (std::is_same_v<T, std::string_view>) {
    return std::string_view(arguments.callText);
  } else if constexpr (std::is_same_v<T, Target>) {
    return Target(out);
  } else {
    static_assert(std::is_enum_v<T>,
                  "a kernel takes the store, series, periods, numbers, prices and an output selector");
    return static_cast<T>(arguments.output);
  }
}

/// The slot of parameter `index`: how many parameters before it take a slot.
template <class... Parameters>
constexpr std::size_t slotOf(std::size_t index) {
  constexpr bool takes[] = {takesSlot<Parameters>...};
  std::size_t slot = 0;
  for (std::size_t i = 0; i < index; ++i) slot += takes[i];
  return slot;
}

template <auto kernel, class Result, class... Parameters, std::size_t... index>
bool invoke(Result (*)(Parameters...), std::index_sequence<index...>, const Arguments& arguments, Out out) {
  if constexpr (std::is_void_v<Result>) {
    kernel(argument<Parameters>(arguments, slotOf<Parameters...>(index), out)...);
    return true;
  } else {
    return kernel(argument<Parameters>(arguments, slotOf<Parameters...>(index), out)...);
  }
}

template <auto kernel, class... Parameters, std::size_t... index>
Status resume(Status (*)(Parameters...), std::index_sequence<index...>, const IncrementalArguments& arguments,
              const Target& out) {
  return kernel(argument<Parameters>(arguments, slotOf<Parameters...>(index), out)...);
}

template <auto kernel, class... Parameters>
Status unpack(Status (*signature)(Parameters...), const IncrementalArguments& arguments, const Target& out) {
  return resume<kernel>(signature, std::index_sequence_for<Parameters...>{}, arguments, out);
}

template <auto kernel, class Result, class... Parameters>
bool unpack(Result (*signature)(Parameters...), const Arguments& arguments, Out out) {
  return invoke<kernel>(signature, std::index_sequence_for<Parameters...>{}, arguments, out);
}

}  // namespace adapter

template <auto kernel>
bool batch(const Arguments& arguments, Out out) {
  return adapter::unpack<kernel>(kernel, arguments, out);
}

template <auto kernel>
Status resumable(const IncrementalArguments& arguments, Target out) {
  return adapter::unpack<kernel>(kernel, arguments, out);
}

}  // namespace brindlewort
