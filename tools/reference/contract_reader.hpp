#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindlewort::reference {

/// What stands above the declaration of an operation, in the shape
///   /// What it computes, in sentences.
///   /// formula: ...
///   /// batch: ...
///   /// resumable: ...
/// A tag begins its line, and its text goes on to the next tag. An empty `///` line ends the contract; what
/// stands behind it is for readers of the header alone.
struct Contract {
  std::string operation;
  std::string description;
  std::string formula;
  std::string batch;
  std::string resumable;
};

/// The contracts of a header, in their order. Comments without tags are none. Throws std::runtime_error, with
/// the number of the line, for a contract that is incomplete or whose tag does not begin a line.
std::vector<Contract> readContracts(std::string_view header);

/// A C++ source that defines indicatorNotes(), see indicator_notes.hpp. Throws std::runtime_error when two
/// contracts are of the same operation.
std::string notesSource(const std::vector<Contract>& contracts);

}  // namespace brindlewort::reference
