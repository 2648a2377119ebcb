// How long the names of each command may be, and which lists of peers a request takes.
#include "remote_config/entity_commands.h"
#include "remote_config/url_commands.h"
#include "tests/remote_config/client_fixture.h"

namespace {

using Client = ROUTERRemoteConfigClient;
using Result = ROUTERRemoteConfigResult;

// Every command with a name behind one signature; add_peer's is that of the domain route.
template <auto Send>
void plain(Client* client, const char* target, const char* entity, Result* result) {
    Send(client, target, entity, result);
}
template <auto Send>
void withXml(Client* client, const char* target, const char* entity, Result* result) {
    Send(client, target, entity, "str://x", true, result);
}
void addPeer(Client* client, const char* target, const char* domainRoute, Result* result) {
    ROUTERRemoteConfigClient_sendCommandAddPeer(client, target, domainRoute, true, "peer", result);
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
};

TEST_F(EntityCommands, SendNamesUpToTheirLimitAndRefuseLongerOnes) {
    using Send = void (*)(Client*, const char* target, const char* entity, Result*);
    const std::tuple<const char*, Send, std::size_t> cases[] = {
        {"pause", plain<ROUTERRemoteConfigClient_sendCommandPause>, 255},
        {"resume", plain<ROUTERRemoteConfigClient_sendCommandResume>, 255},
        {"enable", plain<ROUTERRemoteConfigClient_sendCommandEnable>, 255},
        {"disable", plain<ROUTERRemoteConfigClient_sendCommandDisable>, 255},
        {"delete", plain<ROUTERRemoteConfigClient_sendCommandDelete>, 254},
        {"add_peer", addPeer, 254},
        {"load", withXml<ROUTERRemoteConfigClient_sendCommandLoad>, 255},
        {"update", withXml<ROUTERRemoteConfigClient_sendCommandUpdate>, 255},
        {"create", withXml<ROUTERRemoteConfigClient_sendCommandCreate>, 254},
        {"dupdate", withXml<ROUTERRemoteConfigClient_sendCommandsDUE>, 255},
    };
    for (const auto& [command, sendCommand, longestEntity] : cases) {
        SCOPED_TRACE(command);
        fake_dds::forget();
        sendCommand(&client, name(254).c_str(), name(longestEntity).c_str(), &result);
        EXPECT_EQ(text(), "done");
        // Refused: told to the operator and the log, nothing sent, no number used.
        const DDS_Long invocation = client.commandSample->id.invocation;
        for (const auto& [target, entity] :
             {std::pair(name(255), name(1)), {name(1), name(longestEntity + 1)}}) {
            fake_dds::forget();
            sendCommand(&client, target.c_str(), entity.c_str(), &result);
            EXPECT_TRUE(text().ends_with(" too long")) << text();
            EXPECT_TRUE(fake_dds::world().written.empty());
            EXPECT_EQ(client.commandSample->id.invocation, invocation);
            EXPECT_EQ(log.take().size(), 1U);
        }
    }
}

TEST_F(EntityCommands, TakeUpToSixteenPeersAndKeepTheLastOnesWithoutAny) {
    const auto sendPeers = [this](const std::string& list) {
        fake_dds::forget();
        return ROUTERRemoteConfigClient_sendCommandAddPeer(&client, "r1", "d1", true, list.c_str(), &result);
    };
    const std::string sixteen = "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16";
    const auto& peers = client.commandSample->command._u.peer_desc.peer_list;
    EXPECT_TRUE(sendPeers(name(254) + ",,b"));
    EXPECT_TRUE(sendPeers(",,"));
    EXPECT_EQ(peers.length, 2);
    EXPECT_EQ(ZULSequence::at(peers, 0), name(254));
    EXPECT_TRUE(sendPeers(sixteen));
    EXPECT_EQ(peers.length, 16);
    // A comma behind the 16th is one too many.
    for (const std::string& list : {sixteen + ",", "a," + name(255), name(255) + ",a"}) {
        EXPECT_FALSE(sendPeers(list));
        EXPECT_EQ(text(), "peerList too long");
    }
}

} // namespace
