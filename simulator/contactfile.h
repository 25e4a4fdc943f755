// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"

namespace Simulator {

/** A vCard file as contacts. */
namespace ContactFile {

/** All of the file, in its order; what is no vCard gives none. */
QVector<Contact> read(const QByteArray &text);

} // namespace ContactFile
} // namespace Simulator
