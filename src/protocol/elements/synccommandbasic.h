// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccommandbase.h"

#include <QList>
#include <QPair>
#include <QStringList>

/** A command that needs no more than identifiers: of items, and of single occurrences of a series. */
class SyncCommandBasic : public SyncCommandBase
{
    Q_OBJECT

public:
    explicit SyncCommandBasic(QObject *parent = nullptr);

    QStringList serverIds() const { return mServerIds; }
    void setServerIds(const QStringList &serverIds) { mServerIds = serverIds; }

    /** Pairs of server identifier and start of the occurrence. */
    QList<QPair<QString, QString>> instanceIds() const { return mInstanceIds; }
    void setInstanceIds(const QList<QPair<QString, QString>> &instanceIds) { mInstanceIds = instanceIds; }

    void encode(WbxmlEncoder &encoder) const override;
    void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const override;

private:
    QStringList mServerIds;
    QList<QPair<QString, QString>> mInstanceIds;
};
