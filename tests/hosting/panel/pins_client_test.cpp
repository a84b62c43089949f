#include "pins_client.h"

#include "board_monitor.h"
#include "board_process.h"
#include "descriptors.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

namespace {

using Kind = BoardState::Change::Kind;

// Accepts clients at a path, one after the other.
class Server {
  public:
    explicit Server(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, path.size());
        EXPECT_EQ(bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(fd_, 1), 0);
        SetNonBlocking(fd_);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server()
    {
        CloseDescriptor(client_);
        CloseDescriptor(fd_);
    }

    bool Accept()
    {
        return WaitUntil([&] { return (client_ = accept(fd_, nullptr, nullptr)) >= 0; });
    }
    void HangUp() { CloseDescriptor(std::exchange(client_, -1)); }
    // False if the client has hung up.
    bool Send(const std::string& text)
    {
        const auto sent = send(client_, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        return sent >= 0 || errno == EAGAIN;
    }

  private:
    int fd_;
    int client_ = -1;
};

}  // namespace

TEST(BoardState, IgnoresWhatIsNoStateOfAPin)
{
    const struct {
        const char* line;
        Kind changed;
    } rows[] = {
        {R"({"pin":"14","mode":"in","value":1})", Kind::Pin},
        {R"({"pin":"14","mode":"in","value":1})", Kind::None},
        {R"({"pin":"9","mode":"pwm","duty":99999999999,"freq":-1})", Kind::Pin},
        {R"({"pin":"LED","mode":"out","value":"x"})", Kind::Pin},
        {R"({"pin":"3","mode":"dance","value":1})", Kind::None},
        {R"({"pin":"","mode":"in"})", Kind::None},
        {R"({"pin":["4"],"mode":"in"})", Kind::None},
        {R"({"neopixel":"0","pixels":[[300,-1],"x",[1,2,3,4]]})", Kind::Pixels},
        {R"({"error":"no such pin"})", Kind::None},
        {R"([{"reset":true}])", Kind::None},
        {"\xff{", Kind::None},
        {"", Kind::None},
    };
    BoardState state;
    for (const auto& row : rows) {
        EXPECT_EQ(state.Apply(row.line).kind, row.changed) << row.line;
    }
    QStringList order;
    for (const auto& [pin, ignored] : state.pins()) {
        order.append(pin);
    }
    EXPECT_EQ(order, (QStringList{"LED", "9", "14"}));
    EXPECT_EQ(state.pins().at("9").Brightness(), 1);
    EXPECT_EQ(state.pixels().at("0"), (std::vector<QColor>{{255, 0, 0}, {0, 0, 0}, {5, 6, 7}}));
    EXPECT_EQ(state.Apply(R"({"reset":true})").kind, Kind::Reset);
    EXPECT_TRUE(state.pins().empty() && state.pixels().empty());
}

TEST(PinsClient, ConnectsAgainAfterTheEndAndAfterALineWithoutEnd)
{
    const TemporaryFolder folder;
    PinsClient client;
    client.SetPath(folder / "pins");
    Server server(folder / "pins");
    const auto hasPin = [&](const char* pin) {
        return WaitUntil([&] { return client.state().pins().count(pin) != 0; });
    };
    ASSERT_TRUE(server.Accept()) << "the socket appeared after the client";
    server.Send(R"({"pin":"1","mode":"out","val)");
    server.Send("ue\":1}\nnonsense\n");
    EXPECT_TRUE(hasPin("1"));
    EXPECT_EQ(client.state().pins().at("1").value, 1);

    server.HangUp();
    ASSERT_TRUE(server.Accept());
    EXPECT_TRUE(client.state().pins().empty()) << "the state of a board that has gone";

    const std::string piece(50'000, 'x');
    EXPECT_TRUE(WaitUntil([&] { return !server.Send(piece); })) << "the line had no end";
    server.HangUp();
    ASSERT_TRUE(server.Accept());
    server.Send("{\"pin\":\"2\",\"mode\":\"in\",\"value\":0}\n");
    EXPECT_TRUE(hasPin("2"));
}

TEST(PinsClient, ShowsThePinsOfTheVirtualBoardThatTheEnvironmentNames)
{
    const BoardProcess board;
    setenv("QUILP_VIRTUAL_BOARD", board.link().c_str(), 1);
    const BoardMonitor monitor(
        "/no/program", "/no/folder", [] { return std::vector<BoardPort>(); }, nullptr);
    PinsClient client;
    client.Follow(monitor);
    board.Tool({"exec", "from machine import Pin; Pin(2, Pin.OUT).on()"});
    EXPECT_TRUE(WaitUntil([&] { return client.state().pins().count("2") != 0; }));
    EXPECT_EQ(client.problem(), "");

    setenv("QUILP_VIRTUAL_BOARD_PINS", std::string(200, 'x').c_str(), 1);
    PinsClient other;
    other.Follow(monitor);
    EXPECT_TRUE(other.problem().endsWith("x is too long for a socket.")) << "It is not retried.";
    unsetenv("QUILP_VIRTUAL_BOARD_PINS");
    unsetenv("QUILP_VIRTUAL_BOARD");
}
