// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"
#include "simulator/event.h"

/** What the measured mailboxes hold, by its number. */
namespace MailboxItems {

/** 4 KB of text of its own; the later the number the older it is. */
QByteArray message(int number);

/** A message with one file of that many megabytes, whose bytes do not repeat. */
QByteArray messageWithFile(int megabytes);

/** Every tenth is a weekly series of which one occurrence is moved, another one deleted. */
Simulator::Event event(int number);

/** All fields that are common, and a picture. */
Simulator::Contact contact(int number);

} // namespace MailboxItems
