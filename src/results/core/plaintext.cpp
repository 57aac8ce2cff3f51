#include "plaintext.h"

namespace plaintext
{

QString folded(const QString& text)
{
    QString plain;
    for (const QChar c : text.simplified().normalized(QString::NormalizationForm_D))
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c.toLower();
    return plain;
}

namespace
{

QString field(const QString& text)
{
    if (!text.contains(u';') && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r'))
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

} // namespace

QByteArray csv(const QList<QStringList>& rows)
{
    QString text;
    for (const QStringList& row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (i > 0)
                text += u';';
            text += field(row[i]);
        }
        text += QStringLiteral("\r\n");
    }
    return "\xEF\xBB\xBF" + text.toUtf8();
}

} // namespace plaintext
