// SPDX-License-Identifier: MIT
// Binary form of the handlers: meta-objects, order of virtual operations and members.
#include "Internals.h"
#include "ProcessValue.h"

#include <QMetaMethod>
#include <QtTest>

OPEN_MEMBER(SelectorSharedMemoryHandler, sharedMemoryKey)
OPEN_MEMBER(SelectorSharedMemoryHandler, moduleName)
OPEN_MEMBER(SelectorSharedMemoryHandler, objectName)
OPEN_MEMBER(SelectorSharedMemoryHandler, instanceName)
OPEN_MEMBER(SelectorSharedMemoryHandler, connector)
OPEN_MEMBER(SelectorSharedMemoryHandler, processDataManager)
OPEN_MEMBER(SelectorSharedMemoryHandler, rootElement)
OPEN_MEMBER(SelectorSharedMemoryHandler, processDescription)
OPEN_MEMBER(SelectorSharedMemoryHandler, connectedLeafIndexList)
OPEN_MEMBER(SelectorSharedMemoryHandler, pendingReply)

namespace {

using Handler = SelectorHandlerProcessValue;
using Source = SelectorSharedMemoryHandler;

// kind access signature (parameter names)
QStringList methodsOf(const QMetaObject &metaObject)
{
    const QMap<QMetaMethod::MethodType, QString> kinds{{QMetaMethod::Signal, "signal"},
                                                       {QMetaMethod::Slot, "slot"},
                                                       {QMetaMethod::Method, "method"},
                                                       {QMetaMethod::Constructor, "constructor"}};
    const QMap<QMetaMethod::Access, QString> accesses{{QMetaMethod::Private, "private"},
                                                      {QMetaMethod::Protected, "protected"},
                                                      {QMetaMethod::Public, "public"}};
    QStringList lines;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        lines.append(QStringList{kinds.value(method.methodType()), accesses.value(method.access()),
                                 method.typeName(), method.methodSignature(),
                                 "(" + method.parameterNames().join(", ") + ")"}
                         .join(' '));
    }
    return lines;
}

void checkNothingElse(const QMetaObject &metaObject)
{
    QCOMPARE(metaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(metaObject.propertyCount() - metaObject.propertyOffset(), 0);
    QCOMPARE(metaObject.enumeratorCount() - metaObject.enumeratorOffset(), 0);
    QCOMPARE(metaObject.classInfoCount() - metaObject.classInfoOffset(), 0);
    QCOMPARE(metaObject.constructorCount(), 0);
}

// How many slots QObject's own operations take, seen from a class that adds one.
class Probe : public QObject
{
public:
    virtual void added() { }
};

class HandlerProbe : public Handler
{
public:
    using Handler::Handler;
    virtual void added() { }
};

class SourceProbe : public Source
{
public:
    using Source::Source;
    virtual void added() { }
};

} // namespace

class ClassFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHandlersMetaObject()
    {
        const QMetaObject &metaObject = Handler::staticMetaObject;
        QCOMPARE(metaObject.className(), "SelectorHandlerProcessValue");
        QCOMPARE(methodsOf(metaObject),
                 (QStringList{
                     "signal public void processDataDescriptionChanged(QVector<int>) (indexList)",
                     "signal public void propertyChanged(QVector<int>) (indexList)",
                     "slot private void orvalisStartupReady() ()",
                     "slot private void processDataDescriptionChanged(QString) (sharedMemoryKey)",
                     "slot private void propertyChanged(QString) (sharedMemoryKey)"}));
        checkNothingElse(metaObject);
    }

    void theSourcesMetaObject()
    {
        const QMetaObject &metaObject = Source::staticMetaObject;
        QCOMPARE(metaObject.className(), "SelectorSharedMemoryHandler");
        QCOMPARE(methodsOf(metaObject),
                 (QStringList{
                     "signal public void processDataDescriptionChanged(QString) (sharedMemoryKey)",
                     "signal public void propertyChanged(QString) (sharedMemoryKey)",
                     "slot private void processDataDescriptionChangedIntern(QString) "
                     "(instanceName)",
                     "slot private void propertyChangedIntern(QString) (instanceName)",
                     "slot private void processDataDescriptionChangedHandleReplySuccess() ()",
                     "slot private void processDataDescriptionChangedHandleReplyError("
                     "ErrorContainer) (error)",
                     "slot private void propertyChangedHandleReplySuccess() ()",
                     "slot private void propertyChangedHandleReplyError(ErrorContainer) (error)"}));
        checkNothingElse(metaObject);
    }

    void castsByNameAnswerTheOwnNameAndPassOthersOn()
    {
        Source source("k", "m", "o", "i", nullptr);
        QCOMPARE(source.qt_metacast("SelectorSharedMemoryHandler"), static_cast<void *>(&source));
        QCOMPARE(source.qt_metacast("QObject"), static_cast<void *>(&source));
        QCOMPARE(source.qt_metacast("SelectorSharedMemory"), nullptr);
        QCOMPARE(source.qt_metacast(nullptr), nullptr);
        QCOMPARE(source.metaObject(), &Source::staticMetaObject);

        Handler handler(QVector<QString>(), nullptr);
        QCOMPARE(handler.qt_metacast("SelectorHandlerProcessValue"), static_cast<void *>(&handler));
        QCOMPARE(handler.qt_metacast("SelectorSharedMemoryHandler"), nullptr);
    }

    void theHandlersOwnVirtualsFollowThoseOfQObjectInOrder()
    {
        const int first = virtualSlotOf(&Probe::added);
        using IntGetValues = QVector<ProcessValue> (Handler::*)(int, int);
        using AllGetValues = QVector<ProcessValue> (Handler::*)();
        using AllTexts = QVector<QString> (Handler::*)();
        QCOMPARE(virtualSlotOf(&Handler::getValue), first);
        QCOMPARE(virtualSlotOf(static_cast<IntGetValues>(&Handler::getValues)), first + 1);
        QCOMPARE(virtualSlotOf(static_cast<AllGetValues>(&Handler::getValues)), first + 2);
        QCOMPARE(virtualSlotOf(&Handler::getProperty), first + 3);
        QCOMPARE(virtualSlotOf(&Handler::getProperties), first + 4);
        QCOMPARE(virtualSlotOf(&Handler::getPropertyAsJsonString), first + 5);
        QCOMPARE(virtualSlotOf(static_cast<AllTexts>(&Handler::getPropertiesAsJsonString)),
                 first + 6);
        QCOMPARE(virtualSlotOf(&Handler::setValue), first + 7);
        QCOMPARE(virtualSlotOf(&Handler::setValues), first + 8);
        QCOMPARE(virtualSlotOf(&HandlerProbe::added), first + 9);
    }

    void theListIsSetWithoutAVirtualCall()
    {
        QCOMPARE(virtualSlotOf(&Handler::setSelectorUrls), -1);
        QCOMPARE(Handler::staticMetaObject.indexOfMethod("setSelectorUrls(QVector<QString>)"), -1);
    }

    void theSourceAddsNoVirtuals()
    {
        QCOMPARE(virtualSlotOf(&SourceProbe::added), virtualSlotOf(&Probe::added));
    }

    void theHandlersMembersStandInOrder()
    {
        const auto connector
            = offsetOf(memberOf(SelectorHandlerProcessValue_statusManagerConnector()));
        const auto sources = offsetOf(memberOf(SelectorHandlerProcessValue_sharedMemoryHandlers()));
        const auto records
            = offsetOf(memberOf(SelectorHandlerProcessValue_processDataInformationList()));
        const auto mutex = offsetOf(memberOf(SelectorHandlerProcessValue_mutex()));
        const std::ptrdiff_t pointer = sizeof(void *);
        QCOMPARE(connector, std::ptrdiff_t(sizeof(QObject)));
        QCOMPARE(sources, connector + 2 * pointer);
        QCOMPARE(records, sources + pointer);
        QCOMPARE(mutex, records + pointer);
        QCOMPARE(std::ptrdiff_t(sizeof(Handler)), mutex + std::ptrdiff_t(sizeof(QMutex)));
    }

    void aRecordsFieldsStandInOrder()
    {
        using Record = std::remove_reference_t<decltype(recordsOf(std::declval<Handler &>())[0])>;
        const std::ptrdiff_t pointer = sizeof(void *);
        QCOMPARE(offsetOf(&Record::processDataLeaf), std::ptrdiff_t(0));
        QCOMPARE(offsetOf(&Record::selectorUrlHandler), 2 * pointer);
        QCOMPARE(offsetOf(&Record::propertiesAsJsonString), 4 * pointer);
        QCOMPARE(offsetOf(&Record::sharedMemoryIterator), 5 * pointer);
        QCOMPARE(offsetOf(&Record::readOnly), 6 * pointer);
        QCOMPARE(std::ptrdiff_t(sizeof(Record)), 7 * pointer);
    }

    void aFreshRecordIsEmpty()
    {
        using Record = std::remove_reference_t<decltype(recordsOf(std::declval<Handler &>())[0])>;
        const Record record;
        QVERIFY(record.processDataLeaf.isNull());
        QVERIFY(record.selectorUrlHandler.isNull());
        QCOMPARE(record.propertiesAsJsonString, QString("{\n}\n"));
        QVERIFY(record.sharedMemoryIterator == decltype(record.sharedMemoryIterator)());
        QVERIFY(!record.readOnly);
    }

    void theSourcesMembersStandInOrder()
    {
        const std::ptrdiff_t pointer = sizeof(void *);
        std::ptrdiff_t expected = sizeof(QObject);
        const auto next = [&expected](std::ptrdiff_t size) {
            const std::ptrdiff_t place = expected;
            expected += size;
            return place;
        };
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_sharedMemoryKey())), next(pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_moduleName())), next(pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_objectName())), next(pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_instanceName())), next(pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_connector())), next(2 * pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_processDataManager())),
                 next(2 * pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_rootElement())), next(2 * pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_processDescription())),
                 next(sizeof(QVariant)));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_connectedLeafIndexList())),
                 next(pointer));
        QCOMPARE(offsetOf(memberOf(SelectorSharedMemoryHandler_pendingReply())), next(2 * pointer));
        const std::ptrdiff_t alignment = alignof(Source); // 32-bit processors fill the last word up
        QCOMPARE(std::ptrdiff_t(sizeof(Source)),
                 (expected + alignment - 1) / alignment * alignment);
    }
};

QTEST_GUILESS_MAIN(ClassFormTest)
#include "ClassFormTest.moc"
