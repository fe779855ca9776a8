// write_reference FILE: writes the reference page of the script language.

#include <fstream>
#include <iostream>

#include "reference_page.hpp"

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: write_reference FILE\n";
    return 1;
  }
  std::ofstream out(arguments[1], std::ios::binary);
  out << brindlewort::reference::referencePage();
  if (!out.flush()) {
    std::cerr << "write_reference: " << arguments[1] << " cannot be written\n";
    return 1;
  }
  return 0;
}
