#pragma once

namespace brindlewort::platform {

/// Whether too little of the thread's stack is left for evaluations to nest any deeper. Threads of Windows
/// have 1 MiB as a rule, and so have those of some hosts elsewhere, which the deepest scripts would overrun.
/// False where the system does not tell how large a stack is.
bool stackIsLow();

}  // namespace brindlewort::platform
