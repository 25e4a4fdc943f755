// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>

#include <vector>

/**
 * Checks the bytes of a WBXML document before the library reads them.
 *
 * The library recurses once a level, aborts the process on some entities and hands on what ActiveSync does
 * not allow. One pass, linear in the size of the document, refuses all that: other versions and charsets,
 * open or surplus elements, deep nesting, lengths and table references out of bounds, entities, attributes,
 * processing instructions, extension tokens and text that is not UTF-8. Tags that nobody knows pass. A string
 * table is short, and may not blow a small document up.
 */
class WbxmlValidator
{
public:
    static constexpr int MaxDepth = 64;
    static constexpr int MaxElements = 512 * 1024;
    /** Bytes; the servers of the protocol send none, so that a large one is no reply of theirs. */
    static constexpr int MaxTableLength = 4096;
    /** How often the text taken from the string table may exceed the size of the document. */
    static constexpr int MaxExpansion = 8;

    /** The bytes must outlive the validator. */
    explicit WbxmlValidator(const QByteArray &data);

    bool check();

    /** After check(): why and where it refused. */
    const char *reason() const;
    int offset() const;

    /** After a successful check(): the length up to the end of the root element. */
    int documentLength() const;

private:
    bool refuse(const char *reason, int offset);

    bool checkHeader();
    bool checkStringTable(quint32 length);
    bool checkBody();
    bool checkElement(quint8 tag);
    bool openElement(bool hasContent);
    bool checkContent(quint8 token);
    bool checkInlineString();
    bool checkOpaque();
    bool checkReference();

    bool readByte(quint8 &value);
    bool readNumber(quint32 &value);

    const QByteArray &mData;
    int mPosition = 0;
    int mTokenOffset = 0;
    int mTableOffset = 0;
    int mTableLength = 0;
    std::vector<int> mTableEnds; // where each string of the table ends, ascending
    qint64 mExpanded = 0;
    int mDepth = 0;
    int mElements = 0;
    const char *mReason = "";
    int mOffset = 0;
};
