#include "service/request_acceptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "bindings/recording/recording.h"
#include "service/main_thread_signals.h"
#include "tests/support/fake_fcgi.h"

using recording::Lines;

namespace {

volatile std::sig_atomic_t gHandled = 0;

class RequestAcceptorTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        fake_fcgi::Reset();
        FCGX_InitRequest(&request, 0, 0);
        recording::Reset();
        gHandled = 0;
        (void)std::signal(SIGUSR1, [](int) { gHandled = gHandled + 1; });
        BlockMainThreadSignals();
    }

    void TearDown() override {
        const sigset_t signals = MainThreadSignals();
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    }

    FCGX_Request request{};
};

TEST_F(RequestAcceptorTest, WaitsAgainWhenThereIsNothingToAcceptYet) {
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(-EAGAIN);
    fake_fcgi::QueueAcceptResult(-EAGAIN);
    fake_fcgi::QueueAcceptResult(5);
    EXPECT_EQ(acceptor.Accept(), 5);
    EXPECT_EQ(recording::CallCount("FCGX_Accept_r"), 3U);
}

TEST_F(RequestAcceptorTest, AnyOtherFailureIsTheResult) {
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(-EBADF);
    EXPECT_EQ(acceptor.Accept(), -EBADF);
}

TEST_F(RequestAcceptorTest, ListeningSocketNeverBlocksAnAccept) {
    const RequestAcceptor acceptor(request);
    EXPECT_NE(fcntl(request.listen_sock, F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(RequestAcceptorTest, WithoutAListeningSocketItDoesNotWait) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    request.listen_sock = ends[0];
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(-ENOTSOCK);
    EXPECT_EQ(acceptor.Accept(), -ENOTSOCK);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(RequestAcceptorTest, WithoutAnyDescriptorItDoesNotWait) {
    request.listen_sock = -1;
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(-EBADF);
    EXPECT_EQ(acceptor.Accept(), -EBADF);
}

TEST_F(RequestAcceptorTest, SignalIsHandledEvenWhileRequestsKeepComing) {
    RequestAcceptor acceptor(request);
    (void)raise(SIGUSR1);
    EXPECT_EQ(gHandled, 0);
    fake_fcgi::QueueAcceptResult(0);
    EXPECT_EQ(acceptor.Accept(), 0);
    EXPECT_EQ(gHandled, 1);
}

TEST_F(RequestAcceptorTest, SignalsAreBlockedAgainAfterTheWait) {
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(0);
    acceptor.Accept();
    (void)raise(SIGUSR1);
    EXPECT_EQ(gHandled, 0);
}

TEST_F(RequestAcceptorTest, SignalClosesAKeptConnectionOnWhichNoRequestComes) {
    std::array<int, 2> kept{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, kept.data()), 0);
    request.ipcFd = kept[0];
    RequestAcceptor acceptor(request);
    (void)raise(SIGUSR1);
    fake_fcgi::QueueAcceptResult(-4);
    EXPECT_EQ(acceptor.Accept(), -4);
    EXPECT_EQ(recording::TranscriptText(), Lines({"FCGX_Free(1)", "FCGX_Accept_r()"}));
    close(kept[0]);
    close(kept[1]);
}

TEST_F(RequestAcceptorTest, KeptConnectionIsWaitedForBeforeNewOnes) {
    std::array<int, 2> kept{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, kept.data()), 0);
    ASSERT_EQ(write(kept[1], "r", 1), 1);
    request.ipcFd = kept[0];
    RequestAcceptor acceptor(request);
    fake_fcgi::QueueAcceptResult(0);
    EXPECT_EQ(acceptor.Accept(), 0);
    EXPECT_EQ(recording::TranscriptText(), Lines({"FCGX_Accept_r()"}));
    close(kept[0]);
    close(kept[1]);
}

}  // namespace
