// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

/** Messages of the shapes that differ on the wire. */
namespace SampleMessages {

/** Non-ASCII headers, plain text and HTML, an inline image and a text file of the name "Übersicht 2024.txt".
 */
QByteArray nested();
QByteArray attachment();
QByteArray meetingRequest();
QByteArray signedMessage();

} // namespace SampleMessages
