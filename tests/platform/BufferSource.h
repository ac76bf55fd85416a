// SPDX-License-Identifier: MIT
// A source for tests of shared memory: a buffer with a unique name, and the description of it.
#ifndef BUFFERSOURCE_H
#define BUFFERSOURCE_H

#include "Descriptions.h"
#include "ModuleFiles.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"
#include "PublishedBuffer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// A publisher's buffer and the text that a service would send for it.
struct BufferSource
{
    explicit BufferSource(const QJsonArray &leaves, const QString &module = uniqueModule(),
                          const QString &instance = "1")
    {
        document = ::description(leaves);
        document.insert("module", module);
        document.insert("object", "Tank");
        document.insert("instance", instance);
        const auto parsed = parseDescription(document, DescriptionForm::Template, error);
        if (!parsed) {
            return;
        }
        description = *parsed;
        buffer = PublishedBuffer::create(description, error);
        if (buffer) {
            describeBuffer();
        }
    }

    /// Fills "buffer" and the offsets into the document.
    void describeBuffer()
    {
        QJsonArray elements;
        const QJsonArray described = document.value("elements").toArray();
        for (int i = 0; i < described.size(); ++i) {
            QJsonObject leaf = described.at(i).toObject();
            leaf.insert("offset", double(description.leaves.at(i).offset));
            elements.append(leaf);
        }
        document.insert("elements", elements);
        document.insert("session", double(description.buffer->generation));
        setBuffer("name", description.buffer->name);
        setBuffer("generation", double(description.buffer->generation));
        setBuffer("size", double(description.buffer->size));
        setBuffer("ownerUid", double(description.buffer->ownerUid));
    }

    /// Changes one entry of "buffer" in the document.
    void setBuffer(const QString &key, const QJsonValue &value)
    {
        QJsonObject changed = document.value("buffer").toObject();
        changed.insert(key, value);
        document.insert("buffer", changed);
    }

    bool publish(int leaf, const ProcessValue &value)
    {
        return buffer->publish({{leaf, value}}, error);
    }

    QString text() const { return QString::fromUtf8(QJsonDocument(document).toJson()); }

    /// Path of the buffer's file.
    QString file() const { return "/dev/shm" + description.buffer->name; }

    /// Path of the record of its publisher's life.
    QString life() const { return file() + ".life"; }

    QString url(const QString &leaf) const
    {
        return QString("processdata://%1/Tank/%2/%3")
            .arg(description.source.module, description.source.instance, leaf);
    }

    QJsonObject document;
    ProcessDataDescription description;
    std::unique_ptr<PublishedBuffer> buffer;
    QString error;
};

/// A client's side of a source.
struct BufferClient
{
    explicit BufferClient(const QString &text)
        : manager(new ProcessDataManager)
        , root(manager->createProcessDataFromJson(text, "pdd", ProcessDataManager::InitTypeAttach))
    {
    }

    ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer leaf(const QString &url) const
    {
        return root ? root->getLeafProcessDataValue(url) : nullptr;
    }

    QSharedPointer<ProcessDataManager> manager;
    QSharedPointer<ConfigurationAndProcessDataBase> root;
};

/// What a leaf reads as now; the error type NoValue when it cannot be read.
inline ProcessValue readLeaf(const QSharedPointer<ProcessDataValue> &leaf)
{
    ProcessValue value(ProcessDataDefinitions::NoValue);
    leaf->getValue(value, false);
    return value;
}

#endif
