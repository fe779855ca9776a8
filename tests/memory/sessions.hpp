#pragma once

#include <vector>

#include "memory/session.hpp"

/// The sessions that are played with failing allocations.
namespace brindlewort::testing {

std::vector<Session<bw_script_output>> outputSessions();
/// Every function of the table, in scripts of a few statements, streamed and over all bars at once.
std::vector<Session<bw_script_output>> functionSessions();
std::vector<Session<bw_alert>> alertSessions();
std::vector<Session<bw_backtest>> backtestSessions();
std::vector<Session<bw_validate>> validateSessions();

}  // namespace brindlewort::testing
