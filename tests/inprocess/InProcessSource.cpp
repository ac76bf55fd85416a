// SPDX-License-Identifier: MIT
// A published source in this process, for tests and measurements without a bus.
#include "InProcessSource.h"

#include "InProcessBus.h"
#include "PublishedBuffer.h"
#include "SelectorUrlBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>

class InProcessSourcePrivate
{
public:
    QByteArray text;
    ProcessDataDescription description;
    std::unique_ptr<PublishedBuffer> buffer;
};

static QJsonArray templateLeaves(int leafCount)
{
    QJsonArray leaves;
    for (int i = 0; i < leafCount; ++i) {
        leaves.append(
            QJsonObject{{QStringLiteral("name"), QStringLiteral("leaf%1").arg(i)},
                        {QStringLiteral("type"), QStringLiteral("float64")},
                        {QStringLiteral("unit"), QStringLiteral("1/min")},
                        {QStringLiteral("minimum"), -1000000},
                        {QStringLiteral("maximum"), 1000000},
                        {QStringLiteral("description"), QStringLiteral("Speed %1").arg(i)},
                        {QStringLiteral("selectorType"), QStringLiteral("AnalogSelector")}});
    }
    return leaves;
}

static QByteArray servedText(QJsonObject document, const ProcessDataDescription &description)
{
    QJsonArray elements;
    for (const LeafDescription &leaf : description.leaves) {
        QJsonObject element = leaf.properties.toObject();
        element.insert(QStringLiteral("offset"), qint64(leaf.offset));
        elements.append(element);
    }
    document.insert(QStringLiteral("elements"), elements);
    document.insert(QStringLiteral("session"), qint64(description.buffer->generation));
    document.insert(
        QStringLiteral("buffer"),
        QJsonObject{{QStringLiteral("name"), description.buffer->name},
                    {QStringLiteral("generation"), qint64(description.buffer->generation)},
                    {QStringLiteral("size"), qint64(description.buffer->size)},
                    {QStringLiteral("ownerUid"), qint64(description.buffer->ownerUid)}});
    return QJsonDocument(document).toJson(QJsonDocument::Compact);
}

InProcessSource::InProcessSource(const QString &moduleName, const QString &instanceName,
                                 int leafCount)
    : d(new InProcessSourcePrivate)
{
    const QString objectName = QStringLiteral("InProcess");
    const QJsonObject document{
        {QStringLiteral("format"), QStringLiteral("process-data-description/1")},
        {QStringLiteral("module"), moduleName},
        {QStringLiteral("object"), objectName},
        {QStringLiteral("instance"), instanceName},
        {QStringLiteral("elements"), templateLeaves(leafCount)}};
    QString error;
    const auto parsed = parseDescription(document, DescriptionForm::Template, error);
    if (!parsed) {
        qFatal("%s", qPrintable(error));
    }
    d->description = *parsed;
    d->buffer = PublishedBuffer::create(d->description, error);
    if (!d->buffer) {
        qFatal("%s", qPrintable(error));
    }
    d->text = servedText(document, d->description);
    InProcessBus::serve(moduleName, objectName, instanceName, QString::fromUtf8(d->text));
    for (int i = 0; i < leafCount; ++i) {
        publish(i, i);
    }
}

InProcessSource::~InProcessSource() = default;

QVector<QString> InProcessSource::urls() const
{
    QVector<QString> urls;
    urls.reserve(d->description.leaves.size());
    for (const LeafDescription &leaf : qAsConst(d->description.leaves)) {
        const SourceName &source = d->description.source;
        urls.append(selectorUrl(source.module, source.object, source.instance, leaf.path));
    }
    return urls;
}

QByteArray InProcessSource::description() const
{
    return d->text;
}

QString InProcessSource::bufferName() const
{
    return d->description.buffer->name;
}

QVector<quint64> InProcessSource::offsets() const
{
    QVector<quint64> offsets;
    for (const LeafDescription &leaf : qAsConst(d->description.leaves)) {
        offsets.append(leaf.offset);
    }
    return offsets;
}

void InProcessSource::publish(int leaf, double value)
{
    QString error;
    if (!d->buffer->publish({{leaf, ProcessValue(QVariant(value))}}, error)) {
        qFatal("%s", qPrintable(error));
    }
}
