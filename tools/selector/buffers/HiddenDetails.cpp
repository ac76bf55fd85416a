// SPDX-License-Identifier: MIT
// All platforms that show neither who runs their services nor their buffers.
#include "Counted.h"
#include "DescriptionEdits.h"
#include "PlatformDetails.h"
#include "ProcessDataManager.h"
#include "PropertyManagerConst.h"
#include "SystemStatusManagerDBusConnector.h"

namespace PlatformDetails {

namespace {

using ProcessDataAccess::Result;

QString hidden()
{
    return QStringLiteral("this platform does not show its buffers");
}

class HiddenBuffers : public BufferList
{
public:
    void lookAgain() override { }
    QVector<DoctorFinding> check(const SystemState & /*state*/) const override
    {
        return {DoctorFinding::good(QStringLiteral("buffers"),
                                    QStringLiteral("not examined: ") + hidden())};
    }
    QJsonArray report() const override { return {}; }
};

} // namespace

Result fetchOwner(const QString &module, Owner &owner, QString &errorMessage)
{
    owner = Owner();
    owner.service = module;
    QString problem;
    const Result result = ProcessDataAccess::isServed(module, problem);
    if (result == Result::Ok || result == Result::NotSupported) {
        return Result::Ok; // where nobody can tell, the description will show it
    }
    errorMessage = problem;
    return result;
}

QString ownerText(const Owner &owner)
{
    return QStringLiteral("module %1").arg(owner.service);
}

Result fetchServices(Services &services, QString &errorMessage)
{
    services = Services();
    services.managersShown = false;
    QString problem;
    const Result result = ProcessDataAccess::fetchRunningModules(services.modules, problem);
    if (result != Result::NotSupported) {
        errorMessage = problem;
        return result;
    }
    services.listed = false;
    if (SystemStatusManagerDBusConnector::createAndConnect().isNull()) {
        errorMessage = QStringLiteral("The platform gives no connection");
        return Result::BusNotReachable;
    }
    return Result::Ok;
}

Result fetchReady(bool & /*ready*/, QString &errorMessage)
{
    errorMessage = QStringLiteral("this platform does not show its status manager");
    return Result::NotSupported;
}

Buffer inspectBuffer(const QString &description)
{
    constexpr auto attached = static_cast<ProcessDataManager::InitTypeSharedMemory>(1);
    Buffer buffer;
    buffer.leafCount = leavesBelow(description, QString()).size();
    ProcessDataManager manager;
    const auto root = manager.createProcessDataFromJson(
        description, PropertyManagerConst::getProcessDataDescriptionFileExtension(), attached);
    if (root.isNull()) {
        buffer.problem = QStringLiteral("the platform refuses the description");
    } else if (!manager.isBufferValid()) {
        buffer.end = Step::Liveness;
        buffer.problem
            = QStringLiteral("its buffer cannot be attached, or nobody publishes in it any more");
    } else {
        buffer.end = Step::Leaf;
    }
    return buffer;
}

QStringList bufferTexts(const Buffer &buffer)
{
    return {counted(buffer.leafCount, "leaf", "leaves"), hidden(), hidden(), hidden(),
            QStringLiteral("its publisher lives")};
}

int bufferLayout()
{
    return 0;
}

std::shared_ptr<BufferList> listBuffers(const QStringList & /*only*/)
{
    return std::make_shared<HiddenBuffers>();
}

QVector<DoctorFinding> cleanLeftovers(const QStringList & /*only*/, bool /*really*/)
{
    return {DoctorFinding::error(
        QStringLiteral("buffers"), {},
        {Finding::NotSupported, QStringLiteral("nothing can be removed: ") + hidden(),
         QStringLiteral("the platform's own tools remove what is left over")})};
}

} // namespace PlatformDetails
