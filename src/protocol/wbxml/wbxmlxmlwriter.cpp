// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlxmlwriter.h"

#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmltable.h"

WbxmlXmlWriter::WbxmlXmlWriter(QObject *parent)
    : WbxmlParserBase(parent)
{
}

WbxmlXmlWriter::~WbxmlXmlWriter()
{
    if (mTree != nullptr)
        wbxml_tree_destroy(mTree);
}

QString WbxmlXmlWriter::write(const QByteArray &data)
{
    if (mTree != nullptr)
        wbxml_tree_destroy(mTree);
    mLevels.clear();
    mTree = wbxml_tree_create(static_cast<WBXMLLanguage>(WbxmlTable::Language), WBXML_CHARSET_UTF_8);
    if (mTree == nullptr || WbxmlTable::language() == nullptr)
        return {};
    mTree->lang = WbxmlTable::language();
    parse(data);
    return ready() && mTree->root != nullptr ? print() : QString();
}

void WbxmlXmlWriter::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    WBXMLTreeNode *node = wbxml_tree_node_create(WBXML_TREE_ELEMENT_NODE);
    if (node != nullptr)
        node->name = wbxml_tag_create_token(WbxmlTable::tagEntry(codePage, token));
    mLevels.append({ append(node) ? node : nullptr, nullptr });
}

void WbxmlXmlWriter::onEndElement(uint codePage, uint token)
{
    WbxmlParserBase::onEndElement(codePage, token);
    if (!mLevels.isEmpty())
        mLevels.removeLast();
}

void WbxmlXmlWriter::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    Q_UNUSED(codePage)
    Q_UNUSED(token)
    Q_UNUSED(text)
    append(wbxml_tree_node_create_text(
        reinterpret_cast<const WB_UTINY *>(raw.constData()), static_cast<WB_ULONG>(raw.size())));
}

bool WbxmlXmlWriter::append(WBXMLTreeNode *node)
{
    if (node == nullptr)
        return false;
    if (mLevels.isEmpty() && mTree->root == nullptr) {
        mTree->root = node;
        return true;
    }
    // Several elements at top level: the root was an unknown tag. The first one is shown.
    if (mLevels.isEmpty() || mLevels.constLast().node == nullptr) {
        wbxml_tree_node_destroy(node);
        return false;
    }
    Level &level = mLevels.last();
    node->parent = level.node;
    node->prev = level.lastChild;
    if (level.lastChild != nullptr)
        level.lastChild->next = node;
    else
        level.node->children = node;
    level.lastChild = node;
    return true;
}

QString WbxmlXmlWriter::print() const
{
    WBXMLGenXMLParams parameters {};
    parameters.gen_type = WBXML_GEN_XML_INDENT;
    parameters.indent = 2;
    parameters.lang = WBXML_LANG_UNKNOWN; // keeps the tree's own table
    WB_UTINY *xml = nullptr;
    WB_ULONG length = 0;
    if (wbxml_tree_to_xml(mTree, &xml, &length, &parameters) != WBXML_OK)
        return {};
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(xml), static_cast<int>(length));
    wbxml_free(xml);
    return text;
}
