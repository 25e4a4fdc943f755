// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <type_traits>
#include <utility>

/**
 * One field of an item class, written down once: its element, how a reply's text gets into the item, how the
 * item's value gets into a request, and in which protocol versions.
 */
template <class Item> struct Field
{
    using Take = bool (*)(Item &item, const QString &text, const QByteArray &raw);
    using Give = void (*)(const Item &item, Wbxml::Token tag, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version);

    Wbxml::Token tag;
    /** False leaves the item alone and means that the text does not convert. Null: never received. */
    Take take = nullptr;
    /** What is logged, with the text, when take refuses it. */
    const char *refusal = nullptr;
    /** Appends to the encoder's current node unless the value is unset. Null: never sent. */
    Give give = nullptr;
    // Versions compare as integers; the upper end is none of them.
    int since = ExchangeActiveSync::ProtocolVersionUnknown;
    int before = 0xFFFF;

    /** Sent at this protocol version and above. */
    constexpr Field from(ExchangeActiveSync::ProtocolVersion version) const
    {
        Field field = *this;
        field.since = version;
        return field;
    }

    /** Sent below this protocol version. */
    constexpr Field below(ExchangeActiveSync::ProtocolVersion version) const
    {
        Field field = *this;
        field.before = version;
        return field;
    }

    constexpr Field receivedOnly() const
    {
        Field field = *this;
        field.give = nullptr;
        return field;
    }

    constexpr Field sentOnly() const
    {
        Field field = *this;
        field.take = nullptr;
        return field;
    }

    /** Received in another way, for what a kind below does not fit. */
    constexpr Field takenBy(Take otherTake) const
    {
        Field field = *this;
        field.take = otherTake;
        return field;
    }

    /** Sent in another way, for what a kind below does not fit. */
    constexpr Field givenBy(Give otherGive) const
    {
        Field field = *this;
        field.give = otherGive;
        return field;
    }

    void send(const Item &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
    {
        if (give && version >= since && version < before) {
            give(item, tag, encoder, version);
        }
    }
};

template <class Item> class FieldTable;

/**
 * The kinds of fields. Get and Set are the accessors of the item; Unset is the number that stands for "not
 * set" and is not sent.
 */
template <class Item> struct Fields
{
    using Version = ExchangeActiveSync::ProtocolVersion;
    using Tag = Wbxml::Token;

    template <auto Get> using Value = std::decay_t<decltype((std::declval<const Item &>().*Get)())>;

    /** Text; sent if it is not empty. */
    template <auto Get, auto Set> static constexpr Field<Item> text(Tag tag)
    {
        return { tag,
            [](Item &item, const QString &text, const QByteArray &) {
                (item.*Set)(text);
                return true;
            },
            nullptr,
            [](const Item &item, Tag element, WbxmlEncoder &encoder, Version) {
                if (!(item.*Get)().isEmpty()) {
                    encoder.appendTextElement(element, (item.*Get)());
                }
            } };
    }

    /** Text; sent also when it is empty, as an element without content. */
    template <auto Get, auto Set> static constexpr Field<Item> textAlways(Tag tag)
    {
        return text<Get, Set>(tag).givenBy([](const Item &item, Tag element, WbxmlEncoder &encoder, Version) {
            if ((item.*Get)().isEmpty()) {
                encoder.appendElement(element);
            } else {
                encoder.appendTextElement(element, (item.*Get)());
            }
        });
    }

    /** A text that is read and thrown away. */
    static bool discard(Item &, const QString &, const QByteArray &) { return true; }

    /** The bytes as they came. */
    template <auto Get, auto Set> static constexpr Field<Item> bytes(Tag tag)
    {
        return { tag, [](Item &item, const QString &, const QByteArray &raw) {
                    (item.*Set)(raw);
                    return true;
                } };
    }

    /** A number or an enumeration that is not negative. */
    template <auto Get, auto Set, int Unset = -1>
    static constexpr Field<Item> unsignedNumber(Tag tag, const char *refusal)
    {
        return { tag,
            [](Item &item, const QString &text, const QByteArray &) {
                bool converted = false;
                const uint number = text.toUInt(&converted, 10);
                if (converted) {
                    (item.*Set)(static_cast<Value<Get>>(number));
                }
                return converted;
            },
            refusal, giveNumber<Get, Unset> };
    }

    template <auto Get, auto Set, int Unset = -1>
    static constexpr Field<Item> signedNumber(Tag tag, const char *refusal)
    {
        return { tag,
            [](Item &item, const QString &text, const QByteArray &) {
                bool converted = false;
                const int number = text.toInt(&converted, 10);
                if (converted) {
                    (item.*Set)(static_cast<Value<Get>>(number));
                }
                return converted;
            },
            refusal, giveNumber<Get, Unset> };
    }

    /** True for 1 and above; sent always. */
    template <auto Get, auto Set> static constexpr Field<Item> flag(Tag tag, const char *refusal)
    {
        return { tag,
            [](Item &item, const QString &text, const QByteArray &) {
                bool converted = false;
                const uint number = text.toUInt(&converted, 10);
                if (converted) {
                    (item.*Set)(static_cast<Value<Get>>(number > 0));
                }
                return converted;
            },
            refusal,
            [](const Item &item, Tag element, WbxmlEncoder &encoder, Version) {
                encoder.appendIntElement(element, (item.*Get)() ? 1 : 0);
            } };
    }

    /** As flag, for a value that can be unset, which is not sent. */
    template <auto Get, auto Set, int Unset = -1>
    static constexpr Field<Item> optionalFlag(Tag tag, const char *refusal)
    {
        return flag<Get, Set>(tag, refusal).givenBy(giveNumber<Get, Unset>);
    }

    /** True for 1 and above; sent as an element without content if it is set. */
    template <auto Get, auto Set> static constexpr Field<Item> mark(Tag tag, const char *refusal)
    {
        return flag<Get, Set>(tag, refusal)
            .givenBy([](const Item &item, Tag element, WbxmlEncoder &encoder, Version) {
                if ((item.*Get)()) {
                    encoder.appendElement(element);
                }
            });
    }

    /** A list of texts, each in an element of its own under one that is there if the list is not empty. */
    template <auto Get, const Tag &Entry> static constexpr Field<Item> texts(Tag tag)
    {
        return { tag, nullptr, nullptr,
            [](const Item &item, Tag element, WbxmlEncoder &encoder, Version version) {
                if (!(item.*Get)().isEmpty()) {
                    giveTexts<Get, Entry>(item, element, encoder, version);
                }
            } };
    }

    /** As texts, with the outer element also around nothing. */
    template <auto Get, const Tag &Entry> static constexpr Field<Item> textsAlways(Tag tag)
    {
        return { tag, nullptr, nullptr, giveTexts<Get, Entry> };
    }

    /** A container with fields of its own, sent if the predicate of the container holds. */
    template <auto Get, auto Table, auto IsSent> static constexpr Field<Item> container(Tag tag)
    {
        return { tag, nullptr, nullptr,
            [](const Item &item, Tag element, WbxmlEncoder &encoder, Version version) {
                const auto nested = (item.*Get)();
                if (IsSent(nested)) {
                    Table().sendIn(element, nested, encoder, version);
                }
            } };
    }

    /** Containers, each in an element of its own under one that is there if there are any. */
    template <auto Get, const Tag &Entry, auto Table> static constexpr Field<Item> containers(Tag tag)
    {
        return { tag, nullptr, nullptr,
            [](const Item &item, Tag element, WbxmlEncoder &encoder, Version version) {
                const auto list = (item.*Get)();
                if (list.isEmpty()) {
                    return;
                }
                encoder.appendElement(element, true);
                for (const auto &nested : list) {
                    Table().sendIn(Entry, nested, encoder, version);
                }
                encoder.setCurrentNodeToParent();
            } };
    }

private:
    template <auto Get, int Unset>
    static void giveNumber(const Item &item, Tag element, WbxmlEncoder &encoder, Version)
    {
        const auto number = static_cast<int>((item.*Get)());
        if (number != Unset) {
            encoder.appendTextElement(element, QString::number(number));
        }
    }

    template <auto Get, const Tag &Entry>
    static void giveTexts(const Item &item, Tag element, WbxmlEncoder &encoder, Version)
    {
        encoder.appendElement(element, true);
        const QStringList texts = (item.*Get)();
        for (const QString &text : texts) {
            encoder.appendTextElement(Entry, text);
        }
        encoder.setCurrentNodeToParent();
    }
};
