// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlencoder.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmltable.h"
#include "protocol/wbxml/wbxmlxmlwriter.h"

namespace {

const WB_UTINY *libraryBytes(const QByteArray &bytes)
{
    return reinterpret_cast<const WB_UTINY *>(bytes.constData());
}

} // namespace

WbxmlEncoder::WbxmlEncoder(QObject *parent)
    : QObject(parent)
{
    resetTree();
}

WbxmlEncoder::~WbxmlEncoder()
{
    clear();
}

WBXMLTreeNode *WbxmlEncoder::appendElement(uint codePage, uint token, bool makeCurrent, WBXMLTreeNode *parent)
{
    const WBXMLTagEntry *entry = tagEntry(codePage, token);
    if (entry == nullptr) { // the library accepts a tag without an entry and crashes when it encodes it
        qCCritical(eas()) << "Unknown tag, page: " << codePage << ", token: " << token;
        return nullptr;
    }
    if (mTree == nullptr)
        return nullptr;
    WBXMLTag *tag = wbxml_tag_create_token(entry);
    WBXMLTreeNode *node = wbxml_tree_add_elt(mTree, parent != nullptr ? parent : mCurrentNode, tag);
    wbxml_tag_destroy(tag);
    if (makeCurrent)
        mCurrentNode = node;
    return node;
}

WBXMLTreeNode *WbxmlEncoder::appendTextElement(
    uint codePage, uint token, const QString &text, bool makeCurrent, WBXMLTreeNode *parent)
{
    WBXMLTreeNode *node = appendElement(codePage, token, makeCurrent, parent);
    if (node != nullptr)
        appendText(text, node);
    return node;
}

WBXMLTreeNode *WbxmlEncoder::appendIntElement(
    uint codePage, uint token, uint value, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendTextElement(codePage, token, QString::number(value), makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendUInt64Element(
    uint codePage, uint token, qulonglong value, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendTextElement(codePage, token, QString::number(value), makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendByteArrayElement(
    uint codePage, uint token, const QByteArray &bytes, bool makeCurrent, WBXMLTreeNode *parent)
{
    WBXMLTreeNode *node = appendElement(codePage, token, makeCurrent, parent);
    if (node == nullptr)
        return nullptr;
    WBXMLTreeNode *data =
        wbxml_tree_node_create_cdata(libraryBytes(bytes), static_cast<WB_ULONG>(bytes.size()));
    if (data != nullptr && wbxml_tree_add_node(mTree, node, data) == 0)
        wbxml_tree_node_destroy(data);
    return node;
}

WBXMLTreeNode *WbxmlEncoder::appendText(const QString &text, WBXMLTreeNode *parent)
{
    WBXMLTreeNode *target = parent != nullptr ? parent : mCurrentNode;
    if (mTree == nullptr || target == nullptr)
        return nullptr;
    const QByteArray utf8 = text.toUtf8();
    return wbxml_tree_add_text(mTree, target, libraryBytes(utf8), static_cast<WB_ULONG>(utf8.size()));
}

WBXMLTreeNode *WbxmlEncoder::appendElement(Wbxml::Token tag, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendElement(tag.page, tag.token, makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendTextElement(
    Wbxml::Token tag, const QString &text, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendTextElement(tag.page, tag.token, text, makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendIntElement(
    Wbxml::Token tag, uint value, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendIntElement(tag.page, tag.token, value, makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendUInt64Element(
    Wbxml::Token tag, qulonglong value, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendUInt64Element(tag.page, tag.token, value, makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::appendByteArrayElement(
    Wbxml::Token tag, const QByteArray &bytes, bool makeCurrent, WBXMLTreeNode *parent)
{
    return appendByteArrayElement(tag.page, tag.token, bytes, makeCurrent, parent);
}

WBXMLTreeNode *WbxmlEncoder::currentNode() const
{
    return mCurrentNode;
}

void WbxmlEncoder::setCurrentNode(WBXMLTreeNode *node)
{
    mCurrentNode = node;
}

void WbxmlEncoder::setCurrentNodeToParent()
{
    if (mCurrentNode != nullptr)
        mCurrentNode = mCurrentNode->parent;
}

void WbxmlEncoder::clear()
{
    if (mTree != nullptr)
        wbxml_tree_destroy(mTree);
    mTree = nullptr;
    mCurrentNode = nullptr;
}

void WbxmlEncoder::resetTree()
{
    clear();
    mTree = wbxml_tree_create(static_cast<WBXMLLanguage>(WbxmlTable::Language), WBXML_CHARSET_UTF_8);
    if (mTree == nullptr) {
        qCCritical(eas()) << "Cannot create WBXML tree";
        return;
    }
    mCurrentNode = mTree->root;
}

QByteArray WbxmlEncoder::encoded() const
{
    if (mTree == nullptr || mTree->root == nullptr)
        return {};
    WBXMLGenWBXMLParams parameters {};
    parameters.wbxml_version = WBXML_VERSION_13;
    parameters.keep_ignorable_ws = 1;
    parameters.use_strtbl = 0;
    parameters.produce_anonymous = 1;
    WB_UTINY *bytes = nullptr;
    WB_ULONG length = 0;
    if (wbxml_tree_to_wbxml(mTree, &bytes, &length, &parameters) != WBXML_OK)
        return {};
    const QByteArray result(reinterpret_cast<const char *>(bytes), static_cast<int>(length));
    wbxml_free(bytes);
    return result;
}

QByteArray WbxmlEncoder::encodedWith(const QByteArray &lastBytes) const
{
    // The last element: the mark of opaque data, their length, and the end of the element.
    const QByteArray nothing = QByteArray::fromHex("c30001");
    const QByteArray document = encoded();
    const int place = document.lastIndexOf(nothing);
    if (place < 0)
        return {};
    QByteArray length(1, char(lastBytes.size() & 0x7f));
    for (int rest = lastBytes.size() >> 7; rest > 0; rest >>= 7)
        length.prepend(char(0x80 | (rest & 0x7f)));
    QByteArray result;
    result.reserve(document.size() + length.size() + lastBytes.size());
    result += document.left(place + 1);
    result += length;
    result += lastBytes;
    result += document.mid(place + 2);
    return result;
}

QString WbxmlEncoder::toXml(const QByteArray &data)
{
    return WbxmlXmlWriter().write(data);
}

const WBXMLTagEntry *WbxmlEncoder::tagEntry(uint codePage, uint token)
{
    return WbxmlTable::tagEntry(codePage, token);
}
