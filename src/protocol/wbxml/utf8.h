// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** Strict checking of UTF-8, which Qt's decoder replaces by question marks instead. */
namespace Utf8 {

/** Offset of the first byte that starts no well-formed character, or -1. */
int firstInvalid(const char *bytes, int length);

bool isContinuation(char byte);

} // namespace Utf8
