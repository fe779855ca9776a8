// make_indicator_notes OUT.cpp HEADER...: writes the contracts of the headers as a table in C++.

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "contract_reader.hpp"

namespace {

using namespace brindlewort::reference;

std::vector<Contract> contractsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + " cannot be read");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  try {
    return readContracts(text);
  } catch (const std::runtime_error& problem) {
    throw std::runtime_error(path + ": " + problem.what());
  }
}

void make(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) throw std::runtime_error("usage: make_indicator_notes OUT.cpp HEADER...");
  std::vector<Contract> contracts;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    for (Contract& contract : contractsOf(arguments[i])) contracts.push_back(std::move(contract));
  }
  std::ofstream out(arguments.front(), std::ios::binary);
  out << notesSource(contracts);
  if (!out.flush()) throw std::runtime_error(arguments.front() + " cannot be written");
}

}  // namespace

int main(int count, char** arguments) try {
  make({arguments + 1, arguments + count});
  return 0;
} catch (const std::exception& problem) {
  std::cerr << "make_indicator_notes: " << problem.what() << '\n';
  return 1;
}
