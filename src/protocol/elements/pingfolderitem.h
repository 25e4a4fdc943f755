// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/asprotocolitem.h"

#include <QString>

/** One folder that a Ping has the server watch. Copied like a value. */
class PingFolderItem : public AsProtocolItem
{
    Q_OBJECT

public:
    enum ClassId { Email = 0, Calendar = 1, Contacts = 2, Tasks = 3 };
    Q_ENUM(ClassId)

    explicit PingFolderItem(QObject *parent = nullptr);
    PingFolderItem(const QString &id, ClassId classId, QObject *parent = nullptr);
    PingFolderItem(const PingFolderItem &other);
    PingFolderItem &operator=(const PingFolderItem &other);

    /** The server's identifier of the folder. */
    QString id() const { return mId; }
    void setId(const QString &id) { mId = id; }
    /** As it goes to the server. */
    QString getClass() const { return mClass; }
    void setClass(const QString &folderClass) { mClass = folderClass; }
    void setClass(ClassId classId);

    void encode(WbxmlEncoder &encoder) const override;

private:
    QString mId;
    QString mClass;
};
