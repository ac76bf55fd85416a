// SPDX-License-Identifier: MIT
// Descriptions at random, in every spelling.
#ifndef RANDOMDESCRIPTION_H
#define RANDOMDESCRIPTION_H

#include <QByteArray>
#include <QRandomGenerator>
#include <QVector>

inline QByteArray documentOf(const QByteArray &elements)
{
    return R"({"format": "process-data-description/1", "elements": [)" + elements + "]}";
}

/// Builds descriptions of every spelling that JSON knows, and breaks them.
class RandomDescription
{
public:
    explicit RandomDescription(quint32 seed)
        : random(seed)
    {
    }

    QByteArray document()
    {
        QByteArray elements;
        for (int i = 0; i < 4; ++i) {
            elements += (i == 0 ? "" : ",") + space() + element(i, 0);
        }
        return space() + documentOf(elements) + space();
    }

    QByteArray mutated(QByteArray text)
    {
        static const QByteArray bytes("\"\\{}[]:,09.-eEu \n\x80\xc3\xed\xef\xf4\x00tfn", 27);
        for (int i = one(3); i >= 0; --i) {
            const int at = one(text.size());
            switch (one(3)) {
            case 0:
                text[at] = bytes.at(one(bytes.size()));
                break;
            case 1:
                text.insert(at, bytes.at(one(bytes.size())));
                break;
            default:
                text.remove(at, 1 + one(3));
            }
        }
        return text;
    }

private:
    int one(int of) { return int(random.bounded(quint32(qMax(of, 1)))); }

    QByteArray pick(const QVector<QByteArray> &of) { return of.at(one(of.size())); }

    QByteArray space() { return pick({"", "", "", " ", "\n", "\t\r "}); }

    QByteArray digits(int most)
    {
        QByteArray result;
        for (int i = one(most); i >= 0; --i) {
            result += char('0' + one(10));
        }
        return result;
    }

    QByteArray number()
    {
        QByteArray result
            = pick({"", "", "-"}) + (one(3) == 0 ? "0" : char('1' + one(9)) + digits(18));
        if (one(2) == 0) {
            result += '.' + digits(one(2) == 0 ? 3 : 17);
        }
        return one(4) == 0 ? result + pick({"e", "E"}) + pick({"", "+", "-"}) + digits(3) : result;
    }

    QByteArray text()
    {
        QByteArray result;
        for (int i = one(8); i > 0; --i) {
            result
                += pick({"a", "Z", " ", "/", "\x7f", "\xc2\xb0", "\xe2\x82\xac", "\xf0\x9f\x98\x80",
                         "\xef\xbb\xbf", "\xef\xbf\xbf", R"(\")", R"(\\)", R"(\/)", R"(\n)",
                         R"(\u0041)", R"(\u00b0)", R"(\ud83d\ude00)", R"(\ud83d)", R"(\u0000)"});
        }
        return '"' + result + '"';
    }

    QByteArray value(int depth)
    {
        switch (one(depth > 3 ? 4 : 6)) {
        case 0:
        case 1:
            return number();
        case 2:
            return text();
        case 3:
            return pick({"true", "false", "null"});
        case 4:
            return '[' + space() + pick({"", value(depth + 1) + ", " + value(depth + 1)}) + ']';
        default:
            return '{' + space() + pick({"", text() + space() + ':' + value(depth + 1)}) + '}';
        }
    }

    QByteArray element(int position, int depth)
    {
        QVector<QByteArray> members{"\"name\":\"leaf" + QByteArray::number(position) + '"'};
        if (depth < 2 && one(5) == 0) {
            members += "\"elements\":[" + element(0, depth + 1) + space() + ','
                + element(1, depth + 1) + ']';
        } else {
            members += R"("type":"float64")";
        }
        for (int i = one(5); i > 0; --i) {
            const QByteArray checked = one(8) == 0 ? R"("minimum")" : R"("x")";
            members += pick({text(), checked, R"("session")", R"("vendor")"}) + space() + ':'
                + space() + value(0);
        }
        QByteArray result;
        while (!members.isEmpty()) {
            result += (result.isEmpty() ? "" : ",") + space() + members.takeAt(one(members.size()));
        }
        return '{' + result + space() + '}';
    }

    QRandomGenerator random;
};

#endif
