// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactManager>

namespace QtContactsSqliteExtensions {

class ContactManagerEngine;

/** The engine of a manager, by the manager's name; null for managers of another kind. Needs an application
 * object. */
ContactManagerEngine *contactManagerEngine(QTCONTACTS_PREPEND_NAMESPACE(QContactManager) & manager);

} // namespace QtContactsSqliteExtensions
