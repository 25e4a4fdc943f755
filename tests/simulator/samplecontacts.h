// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"

/** Contacts for the simulator's own tests. */
namespace SampleContacts {

/** With each field that a client may send. */
Simulator::Contact full();
/** The contact as a client of any version would write it: the content of ApplicationData. */
QString asXml(const Simulator::Contact &contact);

} // namespace SampleContacts
