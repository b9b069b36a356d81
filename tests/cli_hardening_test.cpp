// End-to-end tests of the tool under faults and hostile input: a full disk,
// a memory limit, standard output that cannot be written, output paths that
// are devices, FIFOs, links or the input itself, damaged and forged model
// files, hostile bytes in inputs and messages, interrupted saves, option
// range messages and a search stopped by its time limit.
#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cli_test_util.h"
#include "support/atomicfile.h"
#include "support/modelfile.h"

#if defined(__SANITIZE_ADDRESS__)
#define SEQLATTICE_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SEQLATTICE_TEST_ASAN 1
#endif
#endif

namespace SEQUENCE_NAMESPACE_800 {
namespace {

// Three shoppers: x then y for two of them, z alone.
const char kThreeShoppers[] =
    "customer,time,item\n"
    "u1,1,x\n"
    "u1,2,y\n"
    "u2,4,x\n"
    "u2,7,y\n"
    "u3,5,z\n";

std::string sampleOrders() {
  return std::string(SEQLATTICE_SOURCE_DIR) + "/data/sample/orders.csv";
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class HardeningTest : public test::CliTest {
 protected:
  std::string workDir() const {
    std::string dir = path("");
    return dir.substr(0, dir.size() - 1);
  }

  // Runs the tool through the shell in the working directory, after the
  // shell commands of `setup` (ulimit, trap), with standard output going to
  // stdoutTo when given. A run that hangs is stopped after two minutes.
  test::CliRun runShell(const std::string& setup,
                        const std::vector<std::string>& args,
                        const std::string& stdoutTo = "") const {
    std::string command = "cd " + test::shellQuoted(workDir()) + " && " +
                          setup + (setup.empty() ? "" : " ; ") +
                          "exec timeout 120 " +
                          test::shellQuoted(SEQLATTICE_CLI);
    for (const std::string& arg : args) command += " " + test::shellQuoted(arg);
    std::string out = workDir() + "/../shell.out";
    std::string err = workDir() + "/../shell.err";
    command += " >" + test::shellQuoted(stdoutTo.empty() ? out : stdoutTo) +
               " 2>" + test::shellQuoted(err) + " </dev/null";
    int status = std::system(("sh -c " + test::shellQuoted(command)).c_str());
    test::CliRun result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = stdoutTo.empty() ? slurp(out) : "";
    result.err = slurp(err);
    return result;
  }

  // Runs the tool with standard output on the write end of a pipe whose
  // read end is closed, SIGPIPE ignored: every write fails with EPIPE.
  test::CliRun runIntoClosedPipe(const std::vector<std::string>& args) const {
    int fds[2];
    EXPECT_EQ(pipe(fds), 0);
    close(fds[0]);
    std::string err = workDir() + "/../pipe.err";
    pid_t child = fork();
    if (child == 0) {
      signal(SIGPIPE, SIG_IGN);
      dup2(fds[1], 1);
      int errFd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      dup2(errFd, 2);
      if (chdir(workDir().c_str()) != 0) _exit(126);
      std::vector<char*> argv;
      std::string program = SEQLATTICE_CLI;
      argv.push_back(&program[0]);
      std::vector<std::string> copies(args);
      for (std::string& arg : copies) argv.push_back(&arg[0]);
      argv.push_back(nullptr);
      execv(program.c_str(), argv.data());
      _exit(127);
    }
    close(fds[1]);
    int status = 0;
    waitpid(child, &status, 0);
    test::CliRun result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = "";
    result.err = slurp(err);
    return result;
  }

  void mineSmallModel(const std::string& name = "m.model") {
    writeFile("orders.csv", kThreeShoppers);
    ASSERT_EQ(
        run({"mine", "orders.csv", "-o", name, "--min-support", "1"}).exitCode,
        0);
  }

  // Starts a save in a child process, which signals itself while the
  // temporary file is open; returns the names left in the working
  // directory.
  std::vector<std::string> interruptedSave(const std::string& target,
                                           int signalNumber) {
    pid_t child = fork();
    if (child == 0) {
      seqlattice_cli::AtomicFile file(target);
      file.stream() << "partial content";
      file.stream().flush();
      raise(signalNumber);
      _exit(0);  // not reached: the signal's default action ends the child
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    if (WIFSIGNALED(status)) {
      EXPECT_EQ(WTERMSIG(status), signalNumber);
    }
    return listWork();
  }

  static std::string slurp(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
};

// --- 1. A full disk -------------------------------------------------------

// A 32 KiB tmpfs where the test runs as root and may mount, else the same
// directory with the file size limited (ulimit -f) and SIGXFSZ ignored, so
// that writes fail as on a full disk.
class DiskFullTest : public HardeningTest {
 protected:
  void SetUp() override {
    HardeningTest::SetUp();
    std::filesystem::create_directory(path("small"));
    if (geteuid() == 0 &&
        mount("tmpfs", path("small").c_str(), "tmpfs", 0, "size=32k") == 0) {
      mounted_ = true;
    }
  }
  void TearDown() override {
    if (mounted_) umount(path("small").c_str());
    HardeningTest::TearDown();
  }
  // The shell setup that makes a write of more than 32 KiB fail.
  std::string limit() const {
    return mounted_ ? "" : "trap '' XFSZ; ulimit -f 64";
  }
  std::string reason() const {
    return mounted_ ? "No space left on device" : "File too large";
  }
  bool mounted_ = false;
};

TEST_F(DiskFullTest, SavingAModelFailsCleanlyAndLeavesNothing) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"mine", sampleOrders(), "-o", "small/x.model",
                                 "--min-support", "0.02"},
        std::vector<std::string>{"mine", sampleOrders(), "-o", "small/x.xml",
                                 "--min-support", "0.02", "--xml"}}) {
    test::CliRun result = runShell(limit(), args);
    EXPECT_EQ(result.exitCode, 1) << result.err;
    EXPECT_TRUE(contains(result.err, ": cannot write: " + reason()))
        << result.err;
    EXPECT_TRUE(std::filesystem::is_empty(path("small")));
  }
}

TEST_F(DiskFullTest, ConvertingIntoAFullDiskKeepsTheOldFile) {
  ASSERT_EQ(
      run({"mine", sampleOrders(), "-o", "big.model", "--min-support", "0.02"})
          .exitCode,
      0);
  writeFile("small/c.xml", "old");
  test::CliRun result =
      runShell(limit(), {"convert", "big.model", "small/c.xml"});
  EXPECT_EQ(result.exitCode, 1) << result.err;
  EXPECT_TRUE(contains(result.err, "small/c.xml: cannot write: " + reason()))
      << result.err;
  EXPECT_EQ(readFile("small/c.xml"), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path("small")),
                          std::filesystem::directory_iterator()),
            1);
}

// --- 2. A memory limit ----------------------------------------------------

TEST_F(HardeningTest, AnAddressSpaceLimitEndsWithAMessage) {
#ifdef SEQLATTICE_TEST_ASAN
  GTEST_SKIP() << "the sanitizer's shadow memory does not run under ulimit -v";
#else
  std::string line;
  for (int item = 1; item <= 1000000; ++item) {
    line += std::to_string(item) + " ";
  }
  writeFile("wide.txt", line + "-1 -2\n");
  test::CliRun result =
      runShell("ulimit -v 2000000", {"mine", "wide.txt", "-o", "w.model",
                                     "--min-support", "1", "--max-items", "2"});
  EXPECT_EQ(result.exitCode, 1) << result.err;
  EXPECT_EQ(result.err.rfind("seqlattice: ", 0), 0u) << result.err;
  EXPECT_FALSE(contains(result.err, "internal error")) << result.err;
  EXPECT_TRUE(contains(result.err, "memory")) << result.err;
  EXPECT_FALSE(std::filesystem::exists(path("w.model")));
#endif
}

// --- 3. Standard output that cannot be written ----------------------------

TEST_F(HardeningTest, EveryCommandReportsAFullStandardOutput) {
  mineSmallModel();
  writeFile("history.csv", "customer,time,item\nu9,1,x\n");
  const std::vector<std::vector<std::string>> commands = {
      {"rules", "m.model"},
      {"patterns", "m.model"},
      {"predict", "m.model", "--history", "x"},
      {"predict", "m.model", "--input", "history.csv"},
      {"info", "m.model"},
      {"info", "m.model", "--format", "json"},
      {"mine", "orders.csv", "-o", "n.model", "--min-support", "1"},
      {"export", "pmml", "m.model"},
      {"export", "lattice", "m.model"},
      {"export", "dot", "m.model"},
      {"rules", "--help"}};
  for (const auto& args : commands) {
    test::CliRun result = runShell("", args, "/dev/full");
    EXPECT_EQ(result.exitCode, 1) << args[0];
    EXPECT_EQ(result.err,
              "seqlattice: cannot write to standard output: No space left on "
              "device\n")
        << args[0];
  }
}

TEST_F(HardeningTest, AClosedPipeIsAnErrorWithSigpipeIgnored) {
  mineSmallModel();
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"rules", "m.model"},
        std::vector<std::string>{"info", "m.model"},
        std::vector<std::string>{"export", "pmml", "m.model"}}) {
    test::CliRun result = runIntoClosedPipe(args);
    EXPECT_EQ(result.exitCode, 1) << args[0];
    EXPECT_EQ(result.err,
              "seqlattice: cannot write to standard output: Broken pipe\n");
  }
}

// --- 4, 5. Output paths ---------------------------------------------------

TEST_F(HardeningTest, AFifoIsWrittenNotReplaced) {
  mineSmallModel();
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0644), 0);
  std::string received;
  std::thread reader([&] {
    std::ifstream in(path("pipe"), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    received = text.str();
  });
  test::CliRun result = run({"export", "pmml", "m.model", "-o", "pipe"});
  reader.join();
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(received.rfind("<?xml", 0), 0u);
  EXPECT_TRUE(std::filesystem::is_fifo(path("pipe")));
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"m.model", "orders.csv", "pipe"}));
}

TEST_F(HardeningTest, ADeviceIsWrittenNotReplaced) {
  mineSmallModel();
  // A null device of the test's own: /dev/null itself would be lost if the
  // tool replaced it.
  if (mknod(path("null").c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0) {
    GTEST_SKIP() << "cannot make a device node: " << std::strerror(errno);
  }
  test::CliRun result =
      run({"mine", "orders.csv", "-o", "null", "--min-support", "1"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  struct stat info;
  ASSERT_EQ(lstat(path("null").c_str(), &info), 0);
  EXPECT_TRUE(S_ISCHR(info.st_mode));
  result = run({"export", "lattice", "m.model", "-o", "null"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  ASSERT_EQ(lstat(path("null").c_str(), &info), 0);
  EXPECT_TRUE(S_ISCHR(info.st_mode));
}

TEST_F(HardeningTest, StandardOutputByNameIsWrittenIntoThePipe) {
  mineSmallModel();
  // /dev/stdout leads through /proc to "pipe:[N]", which is no file name.
  std::string command = "cd " + test::shellQuoted(workDir()) + " && " +
                        test::shellQuoted(SEQLATTICE_CLI) +
                        " export dot m.model -o /dev/stdout | head -c 7";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  char text[16] = {};
  std::size_t n = std::fread(text, 1, sizeof text - 1, pipe);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_EQ(std::string(text, n), "digraph");
}

TEST_F(HardeningTest, ASymbolicLinkIsFollowed) {
  mineSmallModel();
  std::filesystem::create_directory(path("models"));
  writeFile("models/real.model", "old");
  std::filesystem::create_symlink("models/real.model", path("link.model"));
  test::CliRun result =
      run({"convert", "m.model", "link.model", "--to", "binary"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.model")));
  EXPECT_EQ(readFile("models/real.model"), readFile("m.model"));
  // A link to a file that does not exist yet creates it where it points.
  std::filesystem::create_symlink("models/new.model", path("new.model"));
  EXPECT_EQ(run({"convert", "m.model", "new.model", "--to", "binary"}).exitCode,
            0);
  EXPECT_TRUE(std::filesystem::is_symlink(path("new.model")));
  EXPECT_EQ(readFile("models/new.model"), readFile("m.model"));
}

TEST_F(HardeningTest, AReplacedFileKeepsItsModeAndHardLinks) {
  mineSmallModel();
  writeFile("private.model", "old");
  ASSERT_EQ(chmod(path("private.model").c_str(), 0600), 0);
  EXPECT_EQ(
      run({"convert", "m.model", "private.model", "--to", "binary"}).exitCode,
      0);
  struct stat info;
  ASSERT_EQ(stat(path("private.model").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
  EXPECT_EQ(readFile("private.model"), readFile("m.model"));

  writeFile("a.model", "old");
  std::filesystem::create_hard_link(path("a.model"), path("b.model"));
  EXPECT_EQ(run({"convert", "m.model", "a.model", "--to", "binary"}).exitCode,
            0);
  ASSERT_EQ(stat(path("b.model").c_str(), &info), 0);
  EXPECT_EQ(info.st_nlink, 2u);
  EXPECT_EQ(readFile("b.model"), readFile("m.model"));
  EXPECT_EQ(listWork(),
            (std::vector<std::string>{"a.model", "b.model", "m.model",
                                      "orders.csv", "private.model"}));
}

TEST_F(HardeningTest, ADirectoryIsNoOutputFile) {
  mineSmallModel();
  std::filesystem::create_directory(path("dir"));
  test::CliRun result = run({"convert", "m.model", "dir"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "seqlattice: dir: cannot write: Is a directory\n");
}

// --- 11. The input as output ----------------------------------------------

TEST_F(HardeningTest, TheInputIsNeverTheOutput) {
  writeFile("orders.csv", kThreeShoppers);
  test::CliRun result = run({"mine", "orders.csv", "-o", "orders.csv"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_TRUE(contains(result.err,
                       "the output file orders.csv is the input file "
                       "orders.csv"))
      << result.err;
  EXPECT_EQ(readFile("orders.csv"), kThreeShoppers);
  std::filesystem::create_symlink("orders.csv", path("alias.csv"));
  EXPECT_EQ(run({"mine", "orders.csv", "-o", "alias.csv"}).exitCode, 2);
  EXPECT_EQ(readFile("orders.csv"), kThreeShoppers);

  mineSmallModel();
  std::string model = readFile("m.model");
  EXPECT_EQ(run({"convert", "m.model", "m.model"}).exitCode, 2);
  EXPECT_EQ(run({"export", "pmml", "m.model", "-o", "m.model"}).exitCode, 2);
  EXPECT_EQ(readFile("m.model"), model);
}

// --- 6, 10. Damaged and forged model files --------------------------------

// The binary model's dictionary part and trailer.
struct ModelParts {
  std::string record;
  std::string trailer;
};

ModelParts splitModel(const std::string& file) {
  std::uint64_t trailerSize = 0;
  for (int i = 7; i >= 0; --i) {
    trailerSize = (trailerSize << 8) |
                  static_cast<unsigned char>(file[file.size() - 16 + i]);
  }
  std::size_t recordSize = file.size() - 16 - trailerSize;
  return {file.substr(0, recordSize), file.substr(recordSize, trailerSize)};
}

// A model file of record with a valid trailer (checksum recomputed).
std::string joinModel(const std::string& record, const std::string& trailer) {
  seqlattice_cli::Model model;
  seqlattice_cli::decodeTrailer(trailer, "m", &model);
  std::string fresh =
      seqlattice_cli::encodeTrailer(model, seqlattice_cli::crc32(record));
  std::string tail;
  for (int i = 0; i < 8; ++i) {
    tail += static_cast<char>((fresh.size() >> (8 * i)) & 0xFF);
  }
  return record + fresh + tail + "SQLMODL1";
}

// The offset of the set count of the first two-item pattern record "(a)(b)":
// the record is its 8-byte pattern word 0b11, the item count 2, the items,
// then the set count 2.
std::size_t setCountOfTwoSetPattern(const std::string& record) {
  const std::string count2("\2\0\0\0", 4);
  for (std::size_t at = 0; at + 24 <= record.size(); ++at) {
    if (record.compare(at, 8, std::string("\3\0\0\0\0\0\0\0", 8)) == 0 &&
        record.compare(at + 8, 4, count2) == 0 &&
        record.compare(at + 20, 4, count2) == 0) {
      return at + 20;
    }
  }
  return std::string::npos;
}

TEST_F(HardeningTest, AForgedSetCountIsRefusedAtLoad) {
  mineSmallModel();
  ModelParts parts = splitModel(readFile("m.model"));
  std::size_t at = setCountOfTwoSetPattern(parts.record);
  ASSERT_NE(at, std::string::npos);
  for (const std::string& count : {std::string("\xFF\xFF\xFF\x7F", 4),
                                   std::string("\xFF\xFF\xFF\xFF", 4)}) {
    std::string record = parts.record;
    record.replace(at, 4, count);
    writeFile("forged.model", joinModel(record, parts.trailer));
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"rules", "forged.model"},
          std::vector<std::string>{"patterns", "forged.model"},
          std::vector<std::string>{"export", "pmml", "forged.model"},
          std::vector<std::string>{"export", "dot", "forged.model"}}) {
      test::CliRun result = run(args);
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err,
                "seqlattice: forged.model: damaged dictionary record (a "
                "pattern of level 2 has " +
                    std::string(count[3] == '\x7F' ? "2147483647" : "-1") +
                    " item sets, which its items do not make)\n");
    }
  }
}

TEST_F(HardeningTest, AForgedTrailerLengthIsCheckedBeforeAllocating) {
  mineSmallModel();
  std::string file = readFile("m.model");
  // The length points at the file's first byte, where no trailer starts.
  std::uint64_t forged = file.size() - 16;
  for (int i = 0; i < 8; ++i) {
    file[file.size() - 16 + static_cast<std::size_t>(i)] =
        static_cast<char>((forged >> (8 * i)) & 0xFF);
  }
  writeFile("forged.model", file);
  test::CliRun result = run({"info", "forged.model"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: forged.model: not a seqlattice model file (bad "
            "trailer length)\n");
}

TEST_F(HardeningTest, AHugeFileWithAForgedTrailerLengthTakesNoMemory) {
#ifdef SEQLATTICE_TEST_ASAN
  GTEST_SKIP() << "the sanitizer's shadow memory does not run under ulimit -v";
#else
  // 3 GB, sparse: a length of nearly all of it, then the end mark.
  const std::uint64_t size = std::uint64_t{3} << 30;
  {
    std::ofstream out(path("huge.model"), std::ios::binary);
    out.write("SD", 2);
  }
  std::filesystem::resize_file(path("huge.model"), size - 16);
  std::string tail;
  for (int i = 0; i < 8; ++i) {
    tail += static_cast<char>(((size - 32) >> (8 * i)) & 0xFF);
  }
  std::ofstream(path("huge.model"), std::ios::binary | std::ios::app)
      << tail << "SQLMODL1";
  test::CliRun result = runShell("ulimit -v 1000000", {"info", "huge.model"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: huge.model: not a seqlattice model file (bad "
            "trailer length)\n");
#endif
}

// --- 9. A FIFO or a directory as the model --------------------------------

TEST_F(HardeningTest, AModelMustBeARegularFile) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0644), 0);
  // Without the check the tool would wait for a writer forever.
  test::CliRun result = runShell("", {"info", "pipe"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "seqlattice: pipe: is not a regular file\n");
  std::filesystem::create_directory(path("dir"));
  result = run({"rules", "dir"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "seqlattice: dir: is a directory\n");
}

// --- 12, 13. Hostile bytes ------------------------------------------------

TEST_F(HardeningTest, ANulByteInAnSpmfTokenIsAnError) {
  writeFile("nul.txt", std::string("1 -1 2\0garbage -1 -2\n", 22));
  test::CliRun result = run({"mine", "nul.txt", "-o", "m.model"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: nul.txt:1: expected an item, -1 or -2, found "
            "'2\\x00garbage'\n");
  EXPECT_FALSE(std::filesystem::exists(path("m.model")));
}

TEST_F(HardeningTest, MessagesShowControlBytesEscaped) {
  writeFile("bad.csv", "customer,time,item\nc1,\x1b[2J\x07,a\n");
  test::CliRun result = run({"mine", "bad.csv", "-o", "m.model"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "seqlattice: bad.csv:2: bad time \"\\x1B[2J\\x07\": expected a "
            "number or an ISO-8601 date\n");
  mineSmallModel();
  result =
      run({"predict", "m.model", "--history", "\x1b[31mred\x07,caf\xC3\xA9"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(contains(result.err, "item \"\\x1B[31mred\\x07\" is not"))
      << result.err;
  EXPECT_TRUE(contains(result.err, "item \"caf\xC3\xA9\" is not"))
      << result.err;
}

// --- 14. An interrupted save ----------------------------------------------

TEST_F(HardeningTest, AnInterruptedSaveLeavesNoTemporaryFile) {
  writeFile("kept.model", "previous");
  for (int signalNumber : {SIGTERM, SIGINT}) {
    EXPECT_EQ(interruptedSave(path("kept.model"), signalNumber),
              (std::vector<std::string>{"kept.model"}));
    EXPECT_EQ(readFile("kept.model"), "previous");
  }
}

// --- 15. Range messages ---------------------------------------------------

TEST_F(HardeningTest, CountOptionsSayTheirRangeBriefly) {
  mineSmallModel();
  test::CliRun result = run({"rules", "m.model", "--top", "-1"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err,
            "seqlattice: --top: expected a whole number from 0 to "
            "2147483647, not \"-1\"\nRun with --help for more information.\n");
  result = run({"predict", "m.model", "--history", "x", "--top", "0"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err,
            "seqlattice: --top: expected a whole number from 1 to "
            "2147483647, not \"0\"\nRun with --help for more information.\n");
  result = run({"patterns", "m.model", "--min-count", "many"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err,
            "seqlattice: --min-count: expected a whole number from 0 to "
            "2147483647, not \"many\"\nRun with --help for more "
            "information.\n");
}

// --- 16. Progress and the time limit --------------------------------------

TEST_F(HardeningTest, ProgressGoesToStandardErrorWhenAskedFor) {
  writeFile("orders.csv", kThreeShoppers);
  test::CliRun result = run({"mine", "orders.csv", "-o", "m.model",
                             "--min-support", "1", "--progress"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "seqlattice: reading orders.csv ...\n"
            "seqlattice: mining 3 customers ...\n"
            "seqlattice: writing m.model ...\n");
}

TEST_F(HardeningTest, ATimeLimitSavesAnIncompleteModelAndSaysSo) {
  // Every pattern of the sample log at a support of one customer: far more
  // than a millisecond finds.
  test::CliRun result = run({"mine", sampleOrders(), "-o", "part.model",
                             "--min-support", "1", "--time-limit", "0.001"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(contains(result.out,
                       "complete      no: the time limit of "
                       "0.001 s stopped the search"))
      << result.out;
  EXPECT_EQ(result.err,
            "seqlattice: mine: the search stopped at the time limit of 0.001 "
            "s; the model in part.model holds only part of the frequent "
            "patterns\n");
  result = run({"info", "part.model"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(contains(result.out,
                       "\ncomplete                   no (the time limit of "
                       "0.001 s stopped the search)\n"))
      << result.out;
  EXPECT_EQ(run({"rules", "part.model"}).exitCode, 0);
  EXPECT_EQ(run({"mine", sampleOrders(), "-o", "x.model", "--time-limit", "0"})
                .exitCode,
            2);
}

}  // namespace
}  // namespace SEQUENCE_NAMESPACE_800
