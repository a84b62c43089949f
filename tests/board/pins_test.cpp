#include "board_process.h"
#include "descriptors.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace {

const std::string reset = "{\"reset\":true}\n";

// A client of a board's pins.
class PinClient {
  public:
    explicit PinClient(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        isConnected_ = connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    PinClient(const PinClient&) = delete;
    PinClient& operator=(const PinClient&) = delete;
    ~PinClient() { CloseDescriptor(fd_); }

    bool isConnected() const { return isConnected_; }
    void Send(std::string_view text) const { WriteFully(fd_, text); }
    // Reads up to and including `line`; everything that arrived if it did not arrive in time.
    std::string ReadTo(std::string_view line, std::chrono::milliseconds patience)
    {
        WaitUntil(
            [&] {
                pending_ += ReadAvailable(fd_);
                return pending_.find(line) != std::string::npos;
            },
            patience);
        const auto at = pending_.find(line);
        const auto end = at == std::string::npos ? pending_.size() : at + line.size();
        auto rest = pending_.substr(end);
        pending_.resize(end);
        return std::exchange(pending_, std::move(rest));
    }
    // Whether a line arrives that contains `text`.
    bool Receives(const std::string& text)
    {
        const auto received = ReadTo(text, std::chrono::seconds(20));
        return received.ends_with(text) || testing::AssertionFailure() << received;
    }

  private:
    int fd_;
    bool isConnected_ = false;
    std::string pending_;
};

std::string Level(const std::string& pin, int value)
{
    return "{\"pin\":\"" + pin + "\",\"value\":" + std::to_string(value) + "}\n";
}

BackgroundProgram StartProgram(const BoardProcess& board, const std::string& program)
{
    return BackgroundProgram({QUILP_MPREMOTE, "exec", program}, board.variables());
}

}  // namespace

TEST(Pins, ProgramsOfUsualKindsRun)
{
    const struct {
        std::string_view name;
        std::string program;
        // What the client receives, and sends then.
        std::vector<std::pair<std::string, std::string>> exchanges;
        std::string output;
    } rows[] = {
        {"blink",
         R"(
import time
led = Pin('LED', Pin.OUT)
for _ in range(4):
    led.toggle()
    time.sleep(0.05)
)",
         {{R"("LED","mode":"out","value":1})", ""},
          {R"("LED","mode":"out","value":0})", ""},
          {R"("LED","mode":"out","value":1})", ""},
          {R"("LED","mode":"out","value":0})", ""}},
         ""},
        {"debounced button",
         R"(
import machine, micropython, time
micropython.alloc_emergency_exception_buf(100)
button, led, last, count = Pin(14, Pin.IN, Pin.PULL_UP), Pin('LED', Pin.OUT), 0, 0
def pressed(pin):
    global last, count
    now = time.ticks_ms()
    if time.ticks_diff(now, last) > 100:
        last, count = now, count + 1
        led.value(count)
button.irq(pressed, Pin.IRQ_FALLING)
while count < 1: time.sleep(0.05)
time.sleep_ms(150)
state = machine.disable_irq()
Pin(2, Pin.OUT).on()
while button.value() == 1: time.sleep_ms(1)
time.sleep_ms(30)
print(count)
machine.enable_irq(state)
while count < 2: machine.idle()
print(count)
)",
         {{R"("14","mode":"in","value":1})", Level("14", 0) + Level("14", 1) + Level("14", 0)},
          {R"("LED","mode":"out","value":1})", Level("14", 1)},
          {R"("2","mode":"out","value":1})", Level("14", 0)}},
         "1\r\n2\r\n"},
        {"both edges",
         R"(
import time
pin, flags = Pin(3, Pin.IN, Pin.PULL_DOWN), []
irq = pin.irq(lambda pin: flags.append(irq.flags()))
while len(flags) < 3: time.sleep(0.5)
print(flags, pin())
)",
         {{R"("3","mode":"in","value":0})", Level("3", 1) + Level("3", 0) + Level("3", 1)}},
         "[8, 4, 8] 1\r\n"},
        {"fade",
         R"(
from machine import PWM
pwm = PWM(Pin(15), freq=1000)
for duty in range(0, 65536, 257): pwm.duty_u16(duty)
)",
         {{R"({"pin":"15","mode":"pwm","duty":65535,"freq":1000})", ""}},
         ""},
        {"timers",
         R"(
import time
from machine import Timer
led, names = Pin(25, Pin.OUT), []
blink = Timer(period=20, mode=Timer.PERIODIC, callback=lambda timer: led.toggle())
Timer(-1).init(period=30, mode=Timer.ONE_SHOT, callback=lambda timer: names.append('once'))
Timer(1).init(freq=1000, callback=lambda timer: 1 / 0)
Timer(1).init(freq=20, callback=lambda timer: names.append('often') or timer.deinit())
start = time.ticks_ms()
time.sleep_us(300000)
print(sorted(names), 290 < time.ticks_diff(time.ticks_ms(), start) < 1000)
)",
         {{R"("LED","mode":"out","value":1})", ""}, {R"("LED","mode":"out","value":0})", ""}},
         "['often', 'once'] True\r\n"},
        {"asyncio",
         R"(
import asyncio
async def blink(pin, delay):
    for _ in range(4):
        pin.toggle()
        await asyncio.sleep_ms(delay)
async def main():
    await asyncio.gather(blink(Pin(20, Pin.OUT), 50), blink(Pin(21, Pin.OUT), 70))
asyncio.run(main())
)",
         {{R"("20","mode":"out","value":1})", ""},
          {R"("21","mode":"out","value":0})", ""},
          {R"("21","mode":"out","value":1})", ""}},
         ""},
        {"analog input",
         R"(
from machine import ADC
adc = ADC(26)
while adc.read_u16() == 32768: pass
print(adc.read_u16(), adc.read_uv())
)",
         {{R"("26","mode":"adc","u16":32768})", "{\"pin\":\"26\",\"u16\":65535}\n"}},
         "65535 3300000\r\n"},
        {"pixels",
         R"(
from neopixel import NeoPixel
pixels = NeoPixel(Pin(0), 2)
pixels[1] = (255, 2, 3)
pixels.write()
import time
time.sleep(0.1)
)",
         {{R"({"neopixel":"0","pixels":[[0,0,0],[255,2,3]]})", ""}},
         ""},
        {"names",
         R"(
for name in (48, 'GP0', 'GPIO29', 'LED', 'WL_GPIO0', 'GPIO30', 'GP05', 'gp5', 'GPIO', ''):
    try: print(repr(Pin(name)).split(',')[0], end=' ')
    except ValueError as error: print(error, end=' ')
print(repr(Pin.cpu.GPIO15) == repr(Pin.board.GP15))
)",
         {},
         "Pin(GPIO48 Pin(GPIO0 Pin(GPIO29 Pin(\"LED\" Pin(\"LED\" unknown named pin \"GPIO30\" "
         "unknown named pin \"GP05\" unknown named pin \"gp5\" unknown named pin \"GPIO\" "
         "unknown named pin \"\" True\r\n"},
        {"no devices",
         R"(
import dht, network, machine
from machine import I2C, SPI, Signal, SoftI2C, UART
def attempt(function, *arguments):
    try: print(function(*arguments))
    except Exception as error: print(repr(error))
attempt(dht.DHT22(Pin(4)).measure)
attempt(I2C(0).scan)
attempt(I2C(0).readfrom, 60, 1)
attempt(SoftI2C(Pin(5), Pin(4)).writeto, 60, b'')
attempt(SPI(0).read, 2)
attempt(UART(1).read)
wlan = network.WLAN(network.STA_IF); wlan.active(True); wlan.connect('a', 'b')
attempt(lambda: (wlan.scan(), wlan.status() == network.STAT_NO_AP_FOUND, wlan.isconnected()))
attempt(machine.time_pulse_us, Pin(1), 1, 1000)
attempt(Pin, 99)
attempt(hasattr, machine, 'DAC')
try: from machine import DAC
except ImportError: print('no DAC')
attempt(Signal(Pin(2, Pin.OUT, value=1), invert=True).value)
)",
         {},
         "OSError(110,)\r\n[]\r\nOSError(5,)\r\nOSError(19,)\r\nb'\\x00\\x00'\r\nNone\r\n"
         "([], True, False)\r\n-2\r\nValueError('invalid pin',)\r\nFalse\r\nno DAC\r\n0\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const BoardProcess board;
        PinClient client(board.pins());
        auto tool = StartProgram(board, "from machine import Pin" + row.program + "print('end')");
        for (const auto& [received, sent] : row.exchanges) {
            ASSERT_TRUE(client.Receives(received));
            client.Send(sent);
        }
        EXPECT_TRUE(tool.WaitForOutput("end\r\n"));
        EXPECT_EQ(tool.output(), row.output + "end\r\n");
    }
}

TEST(Pins, StopSoftResetAndUnpluggingPutThemBackButKeepLevelsFromOutside)
{
    BoardProcess board;
    PinClient client(board.pins());
    const std::string program =
        "from machine import PWM, Pin, Timer\nPWM(Pin(15), freq=50, duty_u16=9)\n"
        "Timer(period=10, callback=lambda timer: PWM(Pin(15), freq=50, duty_u16=9))\n"
        "Pin(3, Pin.IN).irq(lambda pin: Pin(5, Pin.OUT))\nPin(2, Pin.OUT).on()\n"
        "while True: pass";
    const std::pair<std::string_view, std::function<void(BackgroundProgram&)>> rows[] = {
        {"stop", [](auto& tool) { tool.Signal(SIGTERM); }},
        {"soft reset",
         [&](auto& tool) {
             tool.Signal(SIGKILL);
             board.Tool({"exec", "pass"});
         }},
        {"unplug", [&](auto&) { board.SetPlugged(false); }},
    };
    client.Send(Level("3", 1));
    for (const auto& [name, act] : rows) {
        SCOPED_TRACE(name);
        auto tool = StartProgram(board, program);
        ASSERT_TRUE(client.Receives(R"({"pin":"2","mode":"out","value":1})"));
        PinClient late(board.pins());
        EXPECT_TRUE(late.Receives(R"({"pin":"2","mode":"out","value":1})"
                                  "\n"
                                  R"({"pin":"3","mode":"in","value":1})"
                                  "\n"
                                  R"({"pin":"15","mode":"pwm","duty":9,"freq":50})"
                                  "\n"));
        act(tool);
        EXPECT_TRUE(tool.WaitForExit());
        EXPECT_TRUE(client.Receives(reset));
        board.SetPlugged(true);
        client.Send(Level("3", 0) + Level("3", 1));
        // Timers and interrupts that remained would be called before the LED is lit.
        board.Tool({"resume", "exec",
                    "import machine, time; time.sleep_ms(50)\n"
                    "machine.Pin('LED', machine.Pin.OUT).on()"});
        PinClient later(board.pins());
        const std::string lit = "{\"pin\":\"LED\",\"mode\":\"out\",\"value\":1}\n";
        EXPECT_EQ(later.ReadTo(lit, std::chrono::seconds(20)), lit);
    }
    EXPECT_EQ(board.Tool({"exec", "import machine; print(machine.Pin(3)())"}).output, "1\r\n");
}

TEST(Pins, AResetMakesTheBoardLeaveAndComeBackWithItsCause)
{
    const BoardProcess board(BoardProcess::Files{
        {"boot.py", "import machine\nopen('causes', 'a').write(str(machine.reset_cause()))\n"}});
    std::string causes = "1";
    for (const auto& [program, cause] :
         {std::pair("machine.reset()", "2"),
          {"machine.WDT(timeout=100)\nwhile True: pass", "3"},
          {"machine.Timer(period=10, callback=machine.WDT(timeout=100).feed)\n"
           "import time; time.sleep(0.3); machine.disable_irq()\nwhile True: pass",
           "3"},
          {"machine.Pin(14).irq(lambda pin: machine.reset())\nimport time\nwhile True: "
           "time.sleep(10)",
           "2"},
          {"machine.deepsleep(50)", "4"}}) {
        PinClient client(board.pins());
        auto tool =
            StartProgram(board, std::string("import machine; machine.Pin(14, 0, 1)\n") + program);
        if (std::string_view(program).find("irq(l") != std::string_view::npos) {
            ASSERT_TRUE(client.Receives("\"14\""));
            client.Send(Level("14", 0));
        }
        EXPECT_TRUE(tool.WaitForOutput("the board was unplugged")) << program;
        causes += std::string("5") + cause;  // The tool resets the board at first.
        EXPECT_TRUE(WaitUntil([&] { return ReadFile(board.files() / "causes") == causes; }))
            << program << ReadFile(board.files() / "causes");
        client.Send(Level("14", 1));
    }
}

TEST(Pins, ControlCEndsAProgramWhateverItsTimersDo)
{
    const BoardProcess board;
    for (const auto& [callback, body] :
         {std::pair("pass", "while True: pass"),
          {"pass", "time.sleep(100)"},
          {"str(timer) * 9", "while True: [str(i) for i in range(50)]"},
          {"time.sleep_us(1500)", "while True: pass"},
          {"\n  while True: pass", "time.sleep(100)"}}) {
        for (int i = 0; i < 5; ++i) {
            auto tool = StartProgram(
                board, std::string("import time\nfrom machine import Timer\n"
                                   "def call(timer): ") +
                           callback + "\nTimer(period=2, callback=call)\nprint('on')\n" + body);
            ASSERT_TRUE(tool.WaitForOutput("on"));
            const auto begin = std::chrono::steady_clock::now();
            tool.Signal(SIGTERM);
            EXPECT_TRUE(tool.WaitForExit());
            EXPECT_TRUE(board.IsAtPrompt());
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3))
                << callback << body;
        }
    }
}

TEST(Pins, EveryClientReceivesTheNewestStateAtItsOwnPace)
{
    const BoardProcess board;
    PinClient quick(board.pins()), still(board.pins());
    const auto begin = std::chrono::steady_clock::now();
    auto tool = StartProgram(board, R"(
import time
from machine import Pin
from neopixel import NeoPixel
led, pixels, end = Pin('LED', Pin.OUT), NeoPixel(Pin(0), 1000), time.ticks_ms() + 2000
while time.ticks_ms() < end:
    led.toggle()
    pixels.buf[0] = (pixels.buf[0] + 1) & 255
    pixels.write()
pixels[0] = (1, 2, 3)
pixels.write()
Pin(1, Pin.OUT)
while True: time.sleep(1)
)");
    ASSERT_TRUE(quick.Receives("{\"neopixel\""));
    const auto received = quick.ReadTo(R"("1","mode":"out")", std::chrono::seconds(20));
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    std::size_t frames = 0;
    for (auto at = received.find("[[0,"); at != std::string::npos;
         at = received.find("[[0,", at + 1)) {
        ++frames;
    }
    EXPECT_GE(frames, 20U);
    EXPECT_LE(static_cast<double>(frames), 60 * elapsed.count());
    ASSERT_TRUE(quick.Receives("[[1,2,3]"));
    const auto late = still.ReadTo("[[1,2,3]", std::chrono::seconds(20));
    EXPECT_TRUE(late.ends_with("[[1,2,3]"));
    EXPECT_LT(late.size(), received.size() / 2);
}

TEST(Pins, BadMessagesAreAnsweredAndChangeNothing)
{
    const BoardProcess board;
    PinClient client(board.pins());
    for (const std::string& line :
         {std::string("{"), std::string("[]"), std::string("{\"pin\":\"99\",\"value\":1}"),
          std::string("{\"pin\":\"014\",\"value\":1}"), std::string("{\"pin\":14}"),
          std::string("{\"pin\":\"14\",\"value\":2}"), std::string("{\"pin\":\"14\",\"value\":{}}"),
          std::string("{\"pin\":\"26\",\"u16\":65536}"),
          std::string("{\"pin\":\"26\",\"u16\":1.5}"), std::string("{\"pin\":[],\"value\":1}"),
          std::string("\xff\0{", 3), std::string(100'000, '['), std::string(5000, 'x')}) {
        client.Send(line + "\n");
        const auto answer = client.ReadTo("\n", std::chrono::seconds(20));
        EXPECT_TRUE(answer.starts_with("{\"error\":\"")) << line.substr(0, 80) << answer;
    }
    client.Send("{\"pin\":14,\"value\":true}\n{\"pin\":\"26\",\"u16\":7}");  // Not ended.
    EXPECT_EQ(board
                  .Tool({"exec",
                         "from machine import ADC, Pin\n"
                         "print(Pin(14).value(), ADC(26).read_u16())"})
                  .output,
              "1 32768\r\n");
}

TEST(Pins, TheSocketIsTheUsersOnlyAndReplacesOneThatWasLeftBehind)
{
    const TemporaryFolder folder;
    const auto path = folder / "pins";
    const std::vector<std::string> line{QUILP_BIN "/virtual-board", "--pins", path, folder / "f"};
    {
        BackgroundProgram killed(line);
        ASSERT_TRUE(killed.WaitForOutput("/dev/"));
        struct stat status {};
        ASSERT_EQ(stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode, S_IFSOCK | 0600U);
        EXPECT_NE(RunProgram(line).output.find("Address already in use"), std::string::npos);
        EXPECT_TRUE(PinClient(path).isConnected());
        killed.Signal(SIGKILL);
        EXPECT_TRUE(killed.WaitForExit());
    }
    BackgroundProgram board(line);
    ASSERT_TRUE(board.WaitForOutput("/dev/"));
    EXPECT_TRUE(PinClient(path).isConnected());
    board.Signal(SIGTERM);
    EXPECT_TRUE(board.WaitForExit());
    EXPECT_FALSE(std::filesystem::exists(path));
    folder.Write("pins", "a file");
    EXPECT_EQ(RunProgram(line).status, 1);
    EXPECT_EQ(ReadFile(path), "a file");
    // Beside a link, they are served if that is possible.
    folder.Write("port.pins", "a file");
    BackgroundProgram linked({QUILP_BIN "/virtual-board", "--link", folder / "port", folder / "f"});
    EXPECT_TRUE(linked.WaitForOutput("/dev/"));
    EXPECT_NE(linked.output().find("warning: cannot serve the pins"), std::string::npos);
}
