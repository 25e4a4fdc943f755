// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

/** Base64 as mail has it: in lines that CR LF parts. */
namespace Base64Lines {

constexpr int lettersInLine = 76;
constexpr int octetsInLine = lettersInLine / 4 * 3;

QByteArray encode(const QByteArray &octets);

} // namespace Base64Lines
