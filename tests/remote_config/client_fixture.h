// A client that is connected over the fake DDS, and its errors and warnings.
#pragma once

#include "middleware/base/heap.h"
#include "product/log_masks.h"
#include "remote_config/exchange.h"
#include "tests/fake_dds/fake_dds.h"
#include "tests/middleware/captured_log.h"

#include <gtest/gtest.h>

using Lines = std::vector<std::string>;

inline std::string errorLine(const std::string& context, const std::string& text) {
    return "ERROR [" + context + "] " + text + "\n";
}

// Waits are for ever unless a test says otherwise.
class ConnectedClient : public testing::Test {
protected:
    void SetUp() override {
        fake_dds::reset();
        ROUTERLog_setBitmaps(0xFFFF, ZUL_LOG_LEVEL_ERROR | ZUL_LOG_LEVEL_WARNING);
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 7, ZUL_TIME_FOREVER_SEC));
        fake_dds::forget();
        ROUTERRemoteConfigResult_initialize(&result);
    }
    void TearDown() override {
        ROUTERRemoteConfigResult_finalize(&result);
        EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client)); // with its listener
        EXPECT_EQ(client.currentResponse.load(), nullptr);
        EXPECT_FALSE(fake_dds::world().loan.has_value());
        EXPECT_FALSE(fake_dds::world().isConnected);
    }
    std::string text() const { return result.text == nullptr ? "(null)" : result.text; }

    ROUTERRemoteConfigClient client{};
    ROUTERRemoteConfigResult result{};
    CapturedLog log;
};
