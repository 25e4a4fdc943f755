// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmltokens.h"

#include <QString>
#include <QVariant>
#include <QVector>

class EasProvisionDoc;

/** One value of a policy document, written down once: its element, how a server's text becomes the value, how
 * the value is read, and the number that it has among the policies that a device does not meet. */
struct ProvisionDocField
{
    /** False leaves the document alone and means that the text does not convert. */
    using Take = bool (*)(EasProvisionDoc &doc, const QString &text);
    using Value = QVariant (*)(const EasProvisionDoc &doc);

    /** The element that holds the text. */
    Wbxml::Token element;
    /** The element that the value is known by: the one above for a list. */
    Wbxml::Token title;
    /** What is logged, with the text, when take refuses it. */
    const char *refusal;
    Take take;
    /** A bool, an int (enumerations, sizes that may be negative), a uint or a list of texts. */
    Value value;
    /** 0 if no device is held against it. */
    int failedPolicy = 0;
    /** Where the table of tags has another name for the element than the published one; else null. */
    const char *publishedName = nullptr;

    /** The published name of the value. */
    QString name() const;
};

namespace ProvisionDocFields {

/** In the order of the document's values. */
const QVector<ProvisionDocField> &all();
/** The field that an element holds; null if it holds none. */
const ProvisionDocField *find(uint elementKey);
/** All values of a document under their names. */
QVariantMap values(const EasProvisionDoc &doc);

} // namespace ProvisionDocFields
