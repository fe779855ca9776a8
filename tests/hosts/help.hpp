#pragma once

#include <gtest/gtest.h>

#include <string>

#include "shell/help/help_texts.hpp"

namespace brindlewort::hosts {

/// An entry of the manual as the file of its text holds it. The texts are plain ASCII.
inline std::wstring manualEntry(int id) {
  for (const HelpText& entry : helpTexts()) {
    if (entry.id == id) return std::wstring(entry.text.begin(), entry.text.end());
  }
  ADD_FAILURE() << "no entry " << id;
  return {};
}

}  // namespace brindlewort::hosts
