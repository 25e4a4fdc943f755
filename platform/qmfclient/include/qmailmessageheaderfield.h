// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessagefwd.h>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

/** A header field with parameters. All values are raw bytes, encoded words left as they are. */
class QMF_EXPORT QMailMessageHeaderField : public QMailMessageHeaderFieldFwd
{
public:
    typedef QPair<QByteArray, QByteArray> ParameterType;

    QMailMessageHeaderField() = default;
    QMailMessageHeaderField(const QByteArray &id, const QByteArray &text, FieldType type = StructuredField);
    QMailMessageHeaderField(const QMailMessageHeaderField &other) = default;
    QMailMessageHeaderField &operator=(const QMailMessageHeaderField &other) = default;
    virtual ~QMailMessageHeaderField();

    bool isNull() const;
    QByteArray id() const;
    QByteArray content() const;
    void setContent(const QByteArray &content);
    QByteArray parameter(const QByteArray &name) const;
    void setParameter(const QByteArray &name, const QByteArray &value);
    QList<ParameterType> parameters() const;
    virtual QByteArray toString(bool includeName = true, bool presentable = true) const;

    /** Turns what does not fit into a header into RFC 2047 words; the charset is UTF-8 unless another is
     * named. */
    static QByteArray encodeWord(const QString &text, const QByteArray &charset = "");
    static QString decodeWord(const QByteArray &text);

protected:
    QByteArray mId;
    QByteArray mContent;
    QList<ParameterType> mParameters;
};

/** The Content-Type of a message or part. */
class QMF_EXPORT QMailMessageContentType : public QMailMessageHeaderField
{
public:
    QMailMessageContentType();
    QMailMessageContentType(const QByteArray &type); // NOLINT: converts on purpose

    QByteArray type() const;
    /** An empty type empties the whole content, the subtype with it. */
    void setType(const QByteArray &type);
    QByteArray subType() const;
    void setSubType(const QByteArray &subType);
    QByteArray name() const;
    void setName(const QByteArray &name);
    QByteArray charset() const;
    void setCharset(const QByteArray &charset);
    QByteArray boundary() const;
    void setBoundary(const QByteArray &boundary);
    bool matches(const QByteArray &primary, const QByteArray &sub = QByteArray()) const;
};

/** The Content-Disposition of a message or part. */
class QMF_EXPORT QMailMessageContentDisposition : public QMailMessageHeaderField,
                                                  public QMailMessageContentDispositionFwd
{
public:
    QMailMessageContentDisposition();
    QMailMessageContentDisposition(const QByteArray &type); // NOLINT: converts on purpose
    QMailMessageContentDisposition(DispositionType type); // NOLINT: converts on purpose

    DispositionType type() const;
    void setType(DispositionType type);
    QByteArray filename() const;
    void setFilename(const QByteArray &filename);
    /** -1 without the parameter. */
    int size() const;
    void setSize(int size);
};
