// What each entity command puts into the request, what it leaves alone, and what it refuses.
#include "remote_config/entity_commands.h"
#include "tests/remote_config/client_fixture.h"

namespace {

using Client = ROUTERRemoteConfigClient;
using Result = ROUTERRemoteConfigResult;

// Every entity command behind one signature; add_peer's entity is the domain route.
template <auto Send>
bool toRouter(Client* client, const char* target, const char*, Result* result) {
    return Send(client, target, result);
}
bool addPeer(Client* client, const char* target, const char* domainRoute, Result* result) {
    return ROUTERRemoteConfigClient_sendCommandAddPeer(client, target, domainRoute, true, "peer", result);
}

enum class Branch { NONE, ENTITY_NAME, PEERS };
struct Command {
    const char* name;
    bool (*send)(Client*, const char* target, const char* entity, Result*);
    int kind;
    Branch branch;
    std::size_t longestEntity;
    const char* entityRefusal;
};
constexpr Command COMMANDS[] = {
    {"Unload", toRouter<ROUTERRemoteConfigClient_sendCommandUnload>, 2, Branch::NONE, 0, ""},
    {"Save", toRouter<ROUTERRemoteConfigClient_sendCommandSave>, 12, Branch::NONE, 0, ""},
    {"Get", toRouter<ROUTERRemoteConfigClient_sendCommandGet>, 13, Branch::NONE, 0, ""},
    {"Pause", ROUTERRemoteConfigClient_sendCommandPause, 5, Branch::ENTITY_NAME, 255, "entityName too long"},
    {"Resume", ROUTERRemoteConfigClient_sendCommandResume, 6, Branch::ENTITY_NAME, 255,
     "entityName too long"},
    {"Enable", ROUTERRemoteConfigClient_sendCommandEnable, 7, Branch::ENTITY_NAME, 255,
     "entityName too long"},
    {"Disable", ROUTERRemoteConfigClient_sendCommandDisable, 8, Branch::ENTITY_NAME, 255,
     "entityName too long"},
    {"Delete", ROUTERRemoteConfigClient_sendCommandDelete, 11, Branch::ENTITY_NAME, 254,
     "entityName too long"},
    {"AddPeer", addPeer, 14, Branch::PEERS, 254, "domainRouteName too long"},
};

class EntityCommands : public ConnectedClient {
protected:
    void SetUp() override {
        ConnectedClient::SetUp();
        answerWith([this] { return std::vector{answer("done")}; });
    }
    auto& branches() { return client.commandSample->command._u; }
    Lines peers() {
        Lines list;
        const auto& sequence = branches().peer_desc.peer_list;
        for (DDS_Long i = 0; i < sequence.length; ++i) {
            list.emplace_back(ZULSequence::at(sequence, i));
        }
        return list;
    }
    // Refused: told to the operator and the log, nothing else touched, nothing sent, no number used.
    void expectRefused(const Command& command, const std::string& target, const std::string& entity,
                       const char* message) {
        const auto invocation = client.commandSample->id.invocation;
        fake_dds::forget();
        ROUTERRemoteConfigResult_finalize(&result);
        result.kind = 77;
        EXPECT_FALSE(command.send(&client, target.c_str(), entity.c_str(), &result));
        EXPECT_STREQ(result.textBuffer, message);
        EXPECT_EQ(result.text, result.textBuffer);
        EXPECT_EQ(result.kind, 77);
        EXPECT_EQ(fake_dds::calls(), Lines{});
        EXPECT_EQ(client.commandSample->id.invocation, invocation);
        EXPECT_EQ(log.take(),
                  Lines{warningLine(std::string("ROUTERRemoteConfigClient_sendCommand") + command.name,
                                    ZUL_LOG_ANY_FAILURE_s, message)});
    }
    bool sendPeers(const char* list, bool isFirst = true) {
        ROUTERRemoteConfigResult_finalize(&result);
        return ROUTERRemoteConfigClient_sendCommandAddPeer(&client, "r1", "dr1", isFirst, list, &result);
    }
};

TEST_F(EntityCommands, FillTheirBranchAndLeaveTheOthers) {
    DDS_Long invocation = client.commandSample->id.invocation;
    for (const Command& command : COMMANDS) {
        SCOPED_TRACE(command.name);
        auto& u = branches();
        for (char* member : {u.entity_desc.name, u.entity_desc.xml_url.content, u.entity_name,
                             u.peer_desc.domain_route_name}) {
            ZULString_copyBounded(member, 6, "left");
        }
        u.dummy = 4711;
        ROUTERRemoteConfigResult_finalize(&result);
        EXPECT_TRUE(command.send(&client, "router", "entity", &result));
        EXPECT_EQ(text(), "done");
        EXPECT_TRUE(fake_dds::awaitIdle());

        const auto& request = *fake_dds::written().back();
        EXPECT_EQ(request.id.host, client.commandSample->id.host);
        EXPECT_EQ(request.id.app, client.commandSample->id.app);
        EXPECT_EQ(request.id.invocation, ++invocation);
        EXPECT_STREQ(request.target_router, "router");
        EXPECT_EQ(request.command._d, command.kind);
        EXPECT_STREQ(u.entity_name, command.branch == Branch::ENTITY_NAME ? "entity" : "left");
        EXPECT_STREQ(u.peer_desc.domain_route_name, command.branch == Branch::PEERS ? "entity" : "left");
        EXPECT_STREQ(u.entity_desc.name, "left");
        EXPECT_STREQ(u.entity_desc.xml_url.content, "left");
        EXPECT_EQ(u.dummy, 4711);
    }
    EXPECT_EQ(fake_dds::written().size(), std::size(COMMANDS));
    EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandEnable(&client, "r1", "", &result)); // the router itself
    EXPECT_STREQ(fake_dds::written().back()->command._u.entity_name, "");
}

TEST_F(EntityCommands, NamesHaveALimit) {
    const auto name = [](std::size_t length) {
        return std::string(length, 'n');
    };
    for (const Command& command : COMMANDS) {
        SCOPED_TRACE(command.name);
        ROUTERRemoteConfigResult_finalize(&result);
        EXPECT_TRUE(command.send(&client, name(254).c_str(), name(command.longestEntity).c_str(), &result));
        EXPECT_EQ(fake_dds::written().back()->target_router, name(254));
        if (command.branch == Branch::ENTITY_NAME) {
            EXPECT_EQ(fake_dds::written().back()->command._u.entity_name, name(command.longestEntity));
        }
        for (const std::size_t length : {255U, 256U, 1000U}) {
            expectRefused(command, name(length), "e", "target router name too long");
        }
        if (command.branch != Branch::NONE) {
            for (const std::size_t length :
                 {command.longestEntity + 1, std::size_t{256}, std::size_t{1000}}) {
                expectRefused(command, "r", name(length), command.entityRefusal);
            }
            expectRefused(command, name(255), name(256), "target router name too long"); // looked at first
        }
    }
}

TEST_F(EntityCommands, SplitsPeers) {
    const std::string longest(254, 'p');
    const std::string sixteen = "a1,a2,a3,a4,a5,a6,a7,a8,a9,a10,a11,a12,a13,a14,a15,a16";
    const Lines before{"x", "y"};
    struct Case {
        std::string list;
        Lines expected; // none: refused
    };
    const Case cases[] = {
        {"peerA", {"peerA"}},
        {"peerA,,peerB", {"peerA", "peerB"}},
        {",a,,b,", {"a", "b"}},
        {",,,,,,,,,,,,,,,,,,,,a", {"a"}},
        {"builtin.udpv4://10.0.0.1, 2@host", {"builtin.udpv4://10.0.0.1", " 2@host"}},
        {"", before}, // no peer at all: the previous ones again
        {",,", before},
        {longest + "," + longest, {longest, longest}},
        {sixteen,
         {"a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8", "a9", "a10", "a11", "a12", "a13", "a14", "a15",
          "a16"}},
        {sixteen + ",a17", {}},
        {sixteen + ",", {}}, // counted before it is looked at
        {"a," + longest + "p", {}},
        {longest + "p,a", {}},
        {std::string(100000, 'p'), {}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.list.substr(0, 60));
        ASSERT_TRUE(sendPeers("x,y"));
        const std::size_t sent = fake_dds::written().size();
        const DDS_Long invocation = client.commandSample->id.invocation;
        const bool isRefused = row.expected.empty();
        EXPECT_EQ(sendPeers(row.list.c_str(), false), !isRefused);
        EXPECT_EQ(fake_dds::written().size(), sent + (isRefused ? 0 : 1));
        EXPECT_EQ(client.commandSample->id.invocation, invocation + (isRefused ? 0 : 1));
        EXPECT_EQ(branches().peer_desc.is_first_participant, isRefused ? 1 : 0);
        if (isRefused) {
            EXPECT_STREQ(result.textBuffer, "peerList too long");
            EXPECT_EQ(log.take(), Lines{warningLine("ROUTERRemoteConfigClient_sendCommandAddPeer",
                                                    ZUL_LOG_ANY_FAILURE_s, "peerList too long")});
        } else {
            EXPECT_EQ(peers(), row.expected);
        }
    }
}

} // namespace
