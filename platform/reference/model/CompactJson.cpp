// SPDX-License-Identifier: MIT
// Writes JSON as compact text without losing a digit.
#include "CompactJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

#include <algorithm>

namespace {

// Stands in a text as it is.
bool isPlain(QChar c)
{
    return c.unicode() >= 0x20 && c.unicode() < 0x80 && c != QLatin1Char('"')
        && c != QLatin1Char('\\');
}

enum class Marks {
    Kept, // so that a byte-order mark at the begin of a text survives reading
    AsQtWrites,
};

class Writer
{
public:
    explicit Writer(Marks marks)
        : marks(marks)
    {
    }

    QByteArray bytes;

    void write(const QJsonValue &value)
    {
        switch (value.type()) {
        case QJsonValue::Object:
            write(value.toObject());
            break;
        case QJsonValue::Array:
            write(value.toArray());
            break;
        case QJsonValue::String:
            writeContent(value.toString());
            break;
        default:
            writeScalar(value);
        }
    }

    void write(const QJsonObject &object)
    {
        bytes += '{';
        for (auto member = object.begin(); member != object.end(); ++member) {
            separate('{');
            writeText(member.key());
            bytes += ':';
            write(member.value());
        }
        bytes += '}';
    }

private:
    void write(const QJsonArray &array)
    {
        bytes += '[';
        for (const QJsonValue &entry : array) {
            separate('[');
            write(entry);
        }
        bytes += ']';
    }

    void writeScalar(const QJsonValue &value)
    {
        const QVariant content = value.toVariant();
        if (content.userType() == QMetaType::LongLong) {
            bytes += QByteArray::number(content.toLongLong());
        } else {
            writeByQt(value);
        }
    }

    void writeText(const QString &text)
    {
        if (std::all_of(text.begin(), text.end(), isPlain)) {
            bytes += '"';
            bytes += text.toLatin1();
            bytes += '"';
        } else {
            writeByQt(text);
        }
    }

    void writeContent(const QString &text)
    {
        if (marks == Marks::Kept && text.startsWith(QChar(QChar::ByteOrderMark))) {
            writeMarked(text);
        } else {
            writeText(text);
        }
    }

    // A byte-order mark at the begin of a text is lost when it is read as it is.
    void writeMarked(const QString &text)
    {
        constexpr int markSize = 3; // bytes, in UTF-8
        const int begin = bytes.size() + 1;
        writeText(text);
        bytes.replace(begin, markSize, "\\ufeff");
    }

    void writeByQt(const QJsonValue &value)
    {
        const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        bytes.append(array.constData() + 1, array.size() - 2); // without the array's brackets
    }

    void separate(char open)
    {
        if (!bytes.endsWith(open)) {
            bytes += ',';
        }
    }

    const Marks marks;
};

} // namespace

QByteArray compactJson(const QJsonObject &object)
{
    Writer writer(Marks::Kept);
    writer.write(object);
    return writer.bytes;
}

QByteArray renderedJson(const QJsonValue &value)
{
    Writer writer(Marks::AsQtWrites);
    writer.write(value);
    return writer.bytes;
}
