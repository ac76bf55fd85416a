// SPDX-License-Identifier: MIT
// Samples of 8 bytes through iceoryx.
#include "IceoryxPeer.h"

#include <iceoryx_hoofs/log/logmanager.hpp>
#include <iceoryx_posh/iceoryx_posh_config.hpp>
#include <iceoryx_posh/internal/roudi/roudi.hpp>
#include <iceoryx_posh/popo/publisher.hpp>
#include <iceoryx_posh/popo/subscriber.hpp>
#include <iceoryx_posh/roudi/iceoryx_roudi_components.hpp>
#include <iceoryx_posh/runtime/posh_runtime_single_process.hpp>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr uint64_t batch = 100; // below the capacity of a subscriber's queue

iox::RouDiConfig_t smallMemory()
{
    iox::RouDiConfig_t config;
    config.setDefaults();
    config.m_sharedMemorySegments.clear();
    iox::mepoo::MePooConfig pools;
    pools.addMemPool({128, 1000});
    const auto group = iox::posix::PosixGroup::getGroupOfCurrentProcess().getName();
    config.m_sharedMemorySegments.push_back({group, group, pools, iox::mepoo::MemoryInfo()});
    return config;
}

iox::RouDiConfig_t quiet(iox::RouDiConfig_t config)
{
    iox::log::LogManager::GetLogManager().SetDefaultLogLevel(iox::log::LogLevel::kError);
    return config;
}

iox::popo::SubscriberOptions queueOfABatch()
{
    iox::popo::SubscriberOptions options;
    options.queueCapacity = batch;
    return options;
}

const iox::capro::ServiceDescription service{"Example", "Values", "Value"};

} // namespace

struct IceoryxPeer::Private
{
    iox::roudi::IceOryxRouDiComponents components{quiet(smallMemory())};
    iox::roudi::RouDi manager{
        components.rouDiMemoryManager, components.portManager,
        iox::roudi::RouDi::RoudiStartupParameters{iox::roudi::MonitoringMode::OFF, false}};
    iox::runtime::PoshRuntimeSingleProcess runtime{"benchmark"};
    iox::popo::Publisher<uint64_t> publisher{service};
    iox::popo::Subscriber<uint64_t> subscriber{service, queueOfABatch()};
};

IceoryxPeer::IceoryxPeer()
    : d(std::make_unique<Private>())
{
}

IceoryxPeer::~IceoryxPeer() = default;

double IceoryxPeer::secondsOfTake()
{
    for (uint64_t i = 0; i < batch; ++i) {
        d->publisher.publishCopyOf(i).or_else([](auto &) { std::abort(); });
    }
    uint64_t taken = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (uint64_t i = 0; i < batch; ++i) {
        d->subscriber.take().and_then([&taken](const auto &sample) {
            benchmark::DoNotOptimize(*sample);
            ++taken;
        });
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    if (taken != batch) {
        std::abort();
    }
    return time.count() / double(batch);
}
