// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactManagerEngineFactory>

/** Makes engines for managers of the contact store's name. */
class ContactsEngineFactory : public QtContacts::QContactManagerEngineFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QT_CONTACT_MANAGER_ENGINE_INTERFACE FILE "plugin.json")

public:
    QtContacts::QContactManagerEngine *engine(
        const QMap<QString, QString> &parameters, QtContacts::QContactManager::Error *error) override;
    QString managerName() const override;
};
