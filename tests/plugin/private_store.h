#pragma once

namespace imgbasic {

/// Empties the store that takes the place of the user's own in this program.
void ClearPrivateStore();

#ifndef _WIN32
/// The file that is that store.
const char* PrivateStoreFile();
#endif

}  // namespace imgbasic
