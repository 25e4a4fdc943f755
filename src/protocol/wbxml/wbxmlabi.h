// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <wbxml/wbxml.h>

/*
 * Entry points of libwbxml2 that the library exports without shipping a header for them. The layouts are
 * those of 0.11; include this in .cpp files alone.
 */
extern "C" {

struct WBXMLBuffer;
struct WBXMLList;
struct WBXMLAttribute;
struct WBXMLAttrEntry;
struct WBXMLAttrValueEntry;
struct WBXMLExtValueEntry;
struct WBXMLParser;

struct WBXMLPublicIDEntry
{
    WB_ULONG wbxmlPublicID;
    const char *xmlPublicID;
    const char *xmlRootElt;
    const char *xmlDTD;
};

/** One tag; a row whose name is null ends a table. */
struct WBXMLTagEntry
{
    const char *xmlName;
    WB_UTINY wbxmlCodePage;
    WB_UTINY wbxmlToken;
    WB_ULONG options; // 1: text is written as opaque data and shown as base64
};

struct WBXMLNameSpaceEntry
{
    const char *xmlNameSpace;
    WB_UTINY wbxmlCodePage;
};

/** One language; an entry whose publicID is null ends a list. */
struct WBXMLLangEntry
{
    WBXMLLanguage langID;
    const WBXMLPublicIDEntry *publicID;
    const WBXMLTagEntry *tagTable;
    const WBXMLNameSpaceEntry *nsTable;
    const WBXMLAttrEntry *attrTable;
    const WBXMLAttrValueEntry *attrValueTable;
    const WBXMLExtValueEntry *extValueTable;
};

enum WBXMLValueType { WBXML_VALUE_TOKEN = 0, WBXML_VALUE_LITERAL = 1 };

struct WBXMLTag
{
    WBXMLValueType type;
    union {
        const WBXMLTagEntry *token;
        WBXMLBuffer *literal;
    } u;
};

enum WBXMLTreeNodeType {
    WBXML_TREE_ELEMENT_NODE = 0,
    WBXML_TREE_TEXT_NODE,
    WBXML_TREE_CDATA_NODE,
    WBXML_TREE_PI_NODE,
    WBXML_TREE_TREE_NODE
};

struct WBXMLTree;

struct WBXMLTreeNode
{
    WBXMLTreeNodeType type;
    WBXMLTag *name;
    WBXMLList *attrs;
    WBXMLBuffer *content;
    WBXMLTree *tree;
    WBXMLTreeNode *parent;
    WBXMLTreeNode *children;
    WBXMLTreeNode *next;
    WBXMLTreeNode *prev;
};

struct WBXMLTree
{
    const WBXMLLangEntry *lang;
    WBXMLTreeNode *root;
    WBXMLCharsetMIBEnum orig_charset;
    WB_UTINY cur_code_page;
};

struct WBXMLContentHandler
{
    void (*start_document_clb)(void *context, WBXMLCharsetMIBEnum charset, const WBXMLLangEntry *lang);
    void (*end_document_clb)(void *context);
    void (*start_element_clb)(void *context, WBXMLTag *element, WBXMLAttribute **attributes);
    void (*end_element_clb)(void *context, WBXMLTag *element);
    void (*characters_clb)(void *context, WB_UTINY *characters, WB_ULONG start, WB_ULONG length);
    void (*pi_clb)(void *context, const WB_UTINY *target, WB_UTINY *data);
};

const WBXMLLangEntry *wbxml_tables_get_table(WBXMLLanguage language);

WBXMLTag *wbxml_tag_create_token(const WBXMLTagEntry *token);
WBXMLTag *wbxml_tag_duplicate(WBXMLTag *tag);
void wbxml_tag_destroy(WBXMLTag *tag);

WBXMLTree *wbxml_tree_create(WBXMLLanguage language, WBXMLCharsetMIBEnum charset);
void wbxml_tree_destroy(WBXMLTree *tree);
WBXMLTreeNode *wbxml_tree_add_elt(WBXMLTree *tree, WBXMLTreeNode *parent, WBXMLTag *tag);
WBXMLTreeNode *wbxml_tree_add_text(
    WBXMLTree *tree, WBXMLTreeNode *parent, const WB_UTINY *text, WB_ULONG length);
WB_BOOL wbxml_tree_add_node(WBXMLTree *tree, WBXMLTreeNode *parent, WBXMLTreeNode *node);
WBXMLTreeNode *wbxml_tree_node_create(WBXMLTreeNodeType type);
WBXMLTreeNode *wbxml_tree_node_create_text(const WB_UTINY *text, WB_ULONG length);
WBXMLTreeNode *wbxml_tree_node_create_cdata(const WB_UTINY *text, WB_ULONG length);
void wbxml_tree_node_destroy(WBXMLTreeNode *node);
WBXMLError wbxml_tree_to_wbxml(
    WBXMLTree *tree, WB_UTINY **wbxml, WB_ULONG *length, WBXMLGenWBXMLParams *parameters);
WBXMLError wbxml_tree_to_xml(
    WBXMLTree *tree, WB_UTINY **xml, WB_ULONG *length, WBXMLGenXMLParams *parameters);

WBXMLParser *wbxml_parser_create(void);
void wbxml_parser_destroy(WBXMLParser *parser);
WBXMLError wbxml_parser_parse(WBXMLParser *parser, WB_UTINY *wbxml, WB_ULONG length);
void wbxml_parser_set_user_data(WBXMLParser *parser, void *userData);
void wbxml_parser_set_content_handler(WBXMLParser *parser, WBXMLContentHandler *handler);
void wbxml_parser_set_main_table(WBXMLParser *parser, const WBXMLLangEntry *table);
WB_BOOL wbxml_parser_set_language(WBXMLParser *parser, WBXMLLanguage language);

void wbxml_free(void *memory);

} // extern "C"
