#pragma once

namespace Zorvan {

/// Carries out the library's own hooks. In the thread that runs the hook; uses nothing of the queue.
void runBuiltinHook(const char *key, const char *parameters);

/// Deletes the window of the hook "DebugServer_testMessage", if there is one. In the thread of the queue.
void closeTestEditor();

} // namespace Zorvan
