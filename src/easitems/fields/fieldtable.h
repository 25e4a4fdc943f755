// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/logging.h"
#include "easitems/fields/field.h"
#include "protocol/wbxml/mentions.h"

#include <QDebug>
#include <QHash>
#include <QVector>

#include <algorithm>
#include <initializer_list>
#include <iterator>

/** What became of one text of a reply. */
enum class FieldResult {
    /** The table has no such field. */
    Unknown,
    /** The text does not convert; this was logged once for the reply, and the item is as it was. */
    Refused,
    Stored
};

/**
 * All fields of an item class, in the order in which they are sent. Parsers go through it by element, the
 * encoder of a request by order.
 */
template <class Item> class FieldTable
{
public:
    FieldTable(std::initializer_list<Field<Item>> fields)
        : FieldTable(QVector<Field<Item>>(fields))
    {
    }

    /** The fields of these elements in this order, each from the table that holds it. */
    static FieldTable ordered(
        const QVector<const FieldTable *> &tables, std::initializer_list<Wbxml::Token> order)
    {
        QVector<Field<Item>> picked;
        for (const Wbxml::Token tag : order) {
            for (const FieldTable *table : tables) {
                const auto isIt = [tag](const Field<Item> &field) {
                    return field.tag.key() == tag.key();
                };
                std::copy_if(
                    table->mFields.cbegin(), table->mFields.cend(), std::back_inserter(picked), isIt);
            }
        }
        Q_ASSERT(picked.size() == int(order.size()));
        return FieldTable(picked);
    }

    const QVector<Field<Item>> &fields() const { return mFields; }

    bool receives(uint key) const { return mIndexByTag.contains(key); }

    FieldResult take(
        Item &item, uint key, const QString &text, const QByteArray &raw, Mentions &mentions) const
    {
        const int index = mIndexByTag.value(key, -1);
        if (index < 0) {
            return FieldResult::Unknown;
        }
        const Field<Item> &field = mFields.at(index);
        if (field.take(item, text, raw)) {
            return FieldResult::Stored;
        }
        if (mentions.isFirst(field.refusal, key)) {
            qCWarning(eas()) << field.refusal << text;
        }
        return FieldResult::Refused;
    }

    void send(const Item &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
    {
        for (const Field<Item> &field : mFields) {
            field.send(item, encoder, version);
        }
    }

    /** The same inside an element of their own. */
    void sendIn(Wbxml::Token outer, const Item &item, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const
    {
        encoder.appendElement(outer, true);
        send(item, encoder, version);
        encoder.setCurrentNodeToParent();
    }

private:
    explicit FieldTable(const QVector<Field<Item>> &fields)
        : mFields(fields)
    {
        for (int i = 0; i < mFields.size(); ++i) {
            if (mFields.at(i).take) {
                mIndexByTag.insert(mFields.at(i).tag.key(), i);
            }
        }
    }

    QVector<Field<Item>> mFields;
    QHash<uint, int> mIndexByTag;
};
