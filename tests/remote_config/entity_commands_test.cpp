// What each command puts into the request, and what it refuses.
#include "remote_config/entity_commands.h"
#include "remote_config/url_commands.h"
#include "tests/remote_config/client_fixture.h"

namespace {

using Client = ROUTERRemoteConfigClient;
using Result = ROUTERRemoteConfigResult;

// Every command behind one signature; add_peer's entity is the domain route.
template <auto Send>
bool toRouter(Client* client, const char* target, const char*, Result* result) {
    return Send(client, target, result);
}
template <auto Send>
bool withXml(Client* client, const char* target, const char* entity, Result* result) {
    return Send(client, target, entity, "str://x", true, result) == ROUTER_URL_COMMAND_OK;
}
bool dupdate(Client* client, const char* target, const char* entity, Result* result) {
    return ROUTERRemoteConfigClient_sendCommandsDUE(client, target, entity, "str://x", true, result);
}
bool addPeer(Client* client, const char* target, const char* domainRoute, Result* result) {
    return ROUTERRemoteConfigClient_sendCommandAddPeer(client, target, domainRoute, true, "peer", result);
}

std::string name(std::size_t length) {
    return std::string(length, 'n');
}

class EntityCommands : public ConnectedClient {
protected:
    void SetUp() override {
        ConnectedClient::SetUp();
        answerWith([this] { return std::vector{answer("done")}; });
    }
    auto& branches() { return client.commandSample->command._u; }
    bool sendPeers(const std::string& list, bool isFirst) {
        reset();
        return ROUTERRemoteConfigClient_sendCommandAddPeer(&client, "r1", "dr1", isFirst, list.c_str(),
                                                           &result);
    }
};

TEST_F(EntityCommands, SendNamesUpToTheirLimitAndRefuseLongerOnes) {
    enum Branch { NONE, XML, NAME, PEERS };
    struct Case {
        std::string name;
        bool (*send)(Client*, const char* target, const char* entity, Result*);
        int kind;
        Branch branch;
        std::size_t longestEntity;
        std::string refusal;
    };
    const Case cases[] = {
        {"Unload", toRouter<ROUTERRemoteConfigClient_sendCommandUnload>, 2, NONE, 0, ""},
        {"Save", toRouter<ROUTERRemoteConfigClient_sendCommandSave>, 12, NONE, 0, ""},
        {"Get", toRouter<ROUTERRemoteConfigClient_sendCommandGet>, 13, NONE, 0, ""},
        {"Pause", ROUTERRemoteConfigClient_sendCommandPause, 5, NAME, 255, "entityName too long"},
        {"Resume", ROUTERRemoteConfigClient_sendCommandResume, 6, NAME, 255, "entityName too long"},
        {"Enable", ROUTERRemoteConfigClient_sendCommandEnable, 7, NAME, 255, "entityName too long"},
        {"Disable", ROUTERRemoteConfigClient_sendCommandDisable, 8, NAME, 255, "entityName too long"},
        {"Delete", ROUTERRemoteConfigClient_sendCommandDelete, 11, NAME, 254, "entityName too long"},
        {"AddPeer", addPeer, 14, PEERS, 254, "domainRouteName too long"},
        {"Load", withXml<ROUTERRemoteConfigClient_sendCommandLoad>, 1, XML, 255, "cfgName too long"},
        {"Update", withXml<ROUTERRemoteConfigClient_sendCommandUpdate>, 4, XML, 255, "entityName too long"},
        {"Create", withXml<ROUTERRemoteConfigClient_sendCommandCreate>, 10, XML, 254,
         "parentEntityName too long"},
        {"sDUE", dupdate, 7, NAME, 255, "entityName too long"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        auto& u = branches();
        char* const member = row.branch == PEERS ? u.peer_desc.domain_route_name
                             : row.branch == XML ? u.entity_desc.name
                                                 : u.entity_name;
        const std::string entity = row.branch == NONE ? "left" : name(row.longestEntity);
        ZULString_copyBounded(member, 6, "left");
        const DDS_Long before = client.commandSample->id.invocation;
        reset();
        EXPECT_TRUE(row.send(&client, name(254).c_str(), entity.c_str(), &result));
        EXPECT_EQ(text(), "done");
        const auto& request = *fake_dds::written().back();
        const auto id = request.id;
        EXPECT_EQ(id.host, client.commandSample->id.host);
        EXPECT_EQ(id.app, client.commandSample->id.app);
        EXPECT_EQ(id.invocation, before + (row.send == dupdate ? 4 : 1));
        EXPECT_EQ(request.target_router, name(254));
        EXPECT_EQ(request.command._d, row.kind);
        EXPECT_EQ(member, entity);

        // Refused: told to the operator and the log, nothing sent, no number used.
        std::vector<std::array<std::string, 3>> refused{
            {name(255), name(256), "target router name too long"}};
        if (row.branch != NONE) {
            refused.push_back({"r", entity + "n", row.refusal});
        }
        for (const auto& [target, tooLong, message] : refused) {
            reset();
            EXPECT_EQ(row.send(&client, target.c_str(), tooLong.c_str(), &result), row.branch == XML);
            EXPECT_EQ(text(), message);
            EXPECT_EQ(fake_dds::written().size(), 0U);
            EXPECT_EQ(client.commandSample->id.invocation, id.invocation);
            EXPECT_EQ(log.take(), Lines{warningLine("ROUTERRemoteConfigClient_sendCommand" + row.name,
                                                    "failure: " + message)});
        }
    }
}

TEST_F(EntityCommands, SplitPeers) {
    const std::string longest = name(254);
    std::string sixteen = "a0";
    Lines sixteenPeers{"a0"};
    for (int i = 1; i < 16; ++i) {
        sixteenPeers.push_back("a" + std::to_string(i));
        sixteen += "," + sixteenPeers.back();
    }
    const std::pair<std::string, Lines> cases[] = {
        {",a,, b,", {"a", " b"}},
        {",,", {"x", "y"}}, // no peer at all: the previous ones again
        {longest + "," + longest, {longest, longest}},
        {sixteen, sixteenPeers},
        // Refused.
        {sixteen + ",", {}}, // counted before it is looked at
        {"a," + longest + "n", {}},
        {longest + "n,a", {}},
    };
    for (const auto& [list, expected] : cases) {
        SCOPED_TRACE(list.substr(0, 60));
        ASSERT_TRUE(sendPeers("x,y", true));
        const bool isRefused = expected.empty();
        EXPECT_EQ(sendPeers(list, false), !isRefused);
        EXPECT_EQ(fake_dds::written().size(), isRefused ? 0U : 1U);
        EXPECT_EQ(branches().peer_desc.is_first_participant, isRefused ? 1 : 0);
        EXPECT_EQ(text(), isRefused ? "peerList too long" : "done");
        if (!isRefused) {
            const auto& sequence = fake_dds::written().back()->command._u.peer_desc.peer_list;
            Lines peers;
            for (DDS_Long i = 0; i < sequence.length; ++i) {
                peers.emplace_back(ZULSequence::at(sequence, i));
            }
            EXPECT_EQ(peers, expected);
        }
    }
}

} // namespace
