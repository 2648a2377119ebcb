// What the client's tests share: the log as lines, a client connected over the fake DDS, and waiting for
// a condition.
#pragma once

#include "middleware/base/heap.h"
#include "product/log_masks.h"
#include "product/product_info.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"
#include "remote_config/result.h"
#include "tests/fake_dds/fake_dds.h"

#include <chrono>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using Clock = std::chrono::steady_clock;
using Lines = std::vector<std::string>;

// Waits, without giving up the processor for long, until the condition holds. False after 30 s.
template <class Condition>
bool await(Condition condition) {
    const auto end = Clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (Clock::now() > end) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

// Collects the client's errors and warnings in the log while it lives.
class LogCapture {
public:
    LogCapture() {
        ROUTERLog_setBitmaps(0xFFFF, ZUL_LOG_LEVEL_ERROR | ZUL_LOG_LEVEL_WARNING);
        ZULLog_setSink(sink, this);
    }
    ~LogCapture() { ZULLog_setSink(nullptr, nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // The lines since the last call.
    Lines take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    static void sink(void* data, std::string_view line) {
        auto& self = *static_cast<LogCapture*>(data);
        const std::lock_guard lock(self.mutex_);
        if (line.find("[ROUTER") != line.npos || line.find("Listener_on_data") != line.npos) {
            self.lines_.emplace_back(line);
        }
    }
    std::mutex mutex_;
    Lines lines_;
};

inline std::string errorLine(const std::string& context, const std::string& text) {
    return "ERROR [" + context + "] " + text + "\n";
}

// A client that is connected; waits are for ever unless a test says otherwise.
class ConnectedClient : public testing::Test {
protected:
    void SetUp() override {
        fake_dds::reset();
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 7, ZUL_TIME_FOREVER_SEC));
        fake_dds::forget();
        ROUTERRemoteConfigResult_initialize(&result);
    }
    void TearDown() override {
        EXPECT_TRUE(fake_dds::awaitIdle());
        EXPECT_EQ(client.currentResponse.load(), nullptr);
        EXPECT_EQ(fake_dds::world().openLoans, 0);
        ROUTERRemoteConfigResult_finalize(&result);
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        EXPECT_EQ(fake_dds::world().participant, nullptr);
    }

    // An answer to the request that the client holds now.
    fake_dds::Answer answer(const std::string& message, bool isFinal = true, DDS_Long kind = 0) const {
        return {.id = client.commandSample->id, .kind = kind, .message = message, .isFinal = isFinal};
    }
    // Every request is answered at once by what `answers` makes.
    template <class Answers>
    void answerWith(Answers answers) {
        fake_dds::setHooks({.onWrite = [answers](const fake_dds::Request&) {
            fake_dds::deliver(answers());
        }});
    }
    std::string text() const { return result.text == nullptr ? "(null)" : result.text; }

    ROUTERRemoteConfigClient client{};
    ROUTERRemoteConfigResult result{};
    LogCapture log;
};
