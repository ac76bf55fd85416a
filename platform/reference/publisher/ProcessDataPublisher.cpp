// SPDX-License-Identifier: MIT
// Publishes the process data of one instance: buffer, description, announcements.
#include "ProcessDataPublisher.h"

#include "ModuleHost.h"
#include "ProcessDataPublisherPrivate.h"
#include "PublisherLog.h"

#include <QJsonDocument>

#include <utility>

namespace {

// Whether all went well; else its reason reaches whoever asked for one.
bool told(bool good, const QString &error, QString *errorMessage)
{
    if (!good && errorMessage != nullptr) {
        *errorMessage = error;
    }
    return good;
}

// Document is an object or a text, which must live as long as the result.
template <typename Document> ProcessDataPublisherPrivate::Reader readerOf(const Document &document)
{
    return [&document](const SourceName &source, QString &error) {
        return PublishedDescription::fromTemplate(source, document, error);
    };
}
}

QSharedPointer<ProcessDataPublisher> ProcessDataPublisher::create(const QString &moduleName,
                                                                  const QString &objectName,
                                                                  const QString &instanceName,
                                                                  const QJsonObject &description,
                                                                  QString *errorMessage)
{
    return create(moduleName, objectName, instanceName, description, FirstValues(), errorMessage);
}

QSharedPointer<ProcessDataPublisher>
ProcessDataPublisher::create(const QString &moduleName, const QString &objectName,
                             const QString &instanceName, const QJsonObject &description,
                             const FirstValues &firstValues, QString *errorMessage)
{
    QString error;
    auto state = ProcessDataPublisherPrivate::start({moduleName, objectName, instanceName},
                                                    readerOf(description), error);
    return start(std::move(state), firstValues, error, errorMessage);
}

QSharedPointer<ProcessDataPublisher>
ProcessDataPublisher::createFromText(const QString &moduleName, const QString &objectName,
                                     const QString &instanceName, const QByteArray &description,
                                     const FirstValues &firstValues, QString *errorMessage)
{
    QString error;
    auto state = ProcessDataPublisherPrivate::start({moduleName, objectName, instanceName},
                                                    readerOf(description), error);
    return start(std::move(state), firstValues, error, errorMessage);
}

// state is null when an error is to be told.
QSharedPointer<ProcessDataPublisher>
ProcessDataPublisher::start(std::unique_ptr<ProcessDataPublisherPrivate> state,
                            const FirstValues &firstValues, const QString &error,
                            QString *errorMessage)
{
    if (!told(state != nullptr, error, errorMessage)) {
        return {};
    }
    QSharedPointer<ProcessDataPublisher> publisher(new ProcessDataPublisher(state.release()));
    publisher->d->announceFirst(publisher.data(), firstValues);
    return publisher;
}

ProcessDataPublisher::ProcessDataPublisher(ProcessDataPublisherPrivate *state)
    : d(state)
{
    QObject::connect(d->host.get(), &ModuleHost::connectedChanged, this,
                     &ProcessDataPublisher::connectedChanged);
    QObject::connect(&d->writeDetection, &QTimer::timeout, this,
                     [this] { d->reportClientWrites(this); });
    d->writeDetection.start();
}

ProcessDataPublisher::~ProcessDataPublisher() = default;

bool ProcessDataPublisher::publish(const QString &path, const ProcessValue &value)
{
    return publish({qMakePair(path, value)});
}

bool ProcessDataPublisher::publish(const QString &path, const QVariant &value)
{
    return publish({qMakePair(path, ProcessValue(value))});
}

bool ProcessDataPublisher::publish(const QVector<QPair<QString, ProcessValue>> &values)
{
    if (d->isForkedChild()) {
        return false;
    }
    QVector<QPair<int, ProcessValue>> located;
    located.reserve(values.size());
    for (const auto &value : values) {
        const int leaf = d->description.indexOf(value.first);
        if (leaf < 0) {
            qCWarning(publisherLog).noquote() << label(d->source)
                    + QStringLiteral(": no leaf \"%1\" to publish").arg(value.first);
            return false;
        }
        located += qMakePair(leaf, value.second);
    }
    QString error;
    if (!d->buffer->publish(located, error)) {
        qCWarning(publisherLog).noquote() << label(d->source) + QStringLiteral(": ") + error;
        return false;
    }
    return true;
}

ProcessValue ProcessDataPublisher::value(const QString &path) const
{
    const int leaf = d->description.indexOf(path);
    return leaf < 0 ? ProcessValue(ProcessDataDefinitions::NoValue) : d->buffer->value(leaf);
}

QStringList ProcessDataPublisher::paths() const
{
    QStringList result;
    for (const LeafDescription &leaf : std::as_const(d->description).parsed().leaves) {
        result += leaf.path;
    }
    return result;
}

QJsonObject ProcessDataPublisher::description() const
{
    return QJsonDocument::fromJson(descriptionText()).object();
}

QByteArray ProcessDataPublisher::descriptionText() const
{
    return d->description.served();
}

bool ProcessDataPublisher::replaceDescription(const QJsonObject &description, QString *errorMessage)
{
    return replaceDescription(description, FirstValues(), errorMessage);
}

bool ProcessDataPublisher::replaceDescription(const QJsonObject &description,
                                              const FirstValues &firstValues, QString *errorMessage)
{
    QString error;
    const bool replaced = d->replaceDescription(this, readerOf(description), firstValues, error);
    return told(replaced, error, errorMessage);
}

bool ProcessDataPublisher::replaceProperties(const QJsonObject &description, QString *errorMessage)
{
    QString error;
    const bool replaced = d->replaceProperties(readerOf(description), error);
    return told(replaced, error, errorMessage);
}

bool ProcessDataPublisher::replaceDescriptionText(const QByteArray &description,
                                                  const FirstValues &firstValues,
                                                  QString *errorMessage)
{
    QString error;
    const bool replaced = d->replaceDescription(this, readerOf(description), firstValues, error);
    return told(replaced, error, errorMessage);
}

bool ProcessDataPublisher::replacePropertiesText(const QByteArray &description,
                                                 QString *errorMessage)
{
    QString error;
    const bool replaced = d->replaceProperties(readerOf(description), error);
    return told(replaced, error, errorMessage);
}

void ProcessDataPublisher::setWriteDetectionInterval(int milliseconds)
{
    if (milliseconds > 0) {
        d->writeDetection.start(milliseconds);
    } else {
        d->writeDetection.stop();
    }
}
