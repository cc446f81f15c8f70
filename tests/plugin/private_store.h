#pragma once

#include <string>

namespace imgbasic {

/// Empties the store that takes the place of the user's own in this program.
void ClearPrivateStore();

// What is stored for a filter, as "Name=number Name=number", in the order in which a filter writes
// its options. Reading fails the test on a value of another type than a number's.
std::string Stored(const char* filter);
void Store(const char* filter, const std::string& numbers);

/// Stores a text where a number is expected.
void StoreText(const char* filter, const char* name, const char* text);

#ifndef _WIN32
/// The file that is that store.
const char* PrivateStoreFile();
#endif

}  // namespace imgbasic
