// An instrument that was unplugged is told apart from one that does not answer.
#include <gtest/gtest.h>

#include "comm/comm_fixture.h"
#include "comm/fake_libraries.h"
#include "comm/usbtmc_backend.h"

namespace corlune::testing {
namespace {

TEST(UsbTmc, AnUnpluggedInstrumentIsNoted) {
  CommWorld world;
  FakeLibrary library;
  UsbTmcMdl backend(world.Services(), library.Visa());
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=USB0::A", true), CommStatus::Success);
  library.Answer("viWrite", {.status = VI_ERROR_TMO});
  backend.GP_Send_Str(0, "*CLS");
  EXPECT_FALSE(backend.ConnectionLost(0)) << "a time-out";
  std::string reply;
  library.Answer("viRead", {.status = VI_ERROR_TMO});
  backend.GP_Receive_Str(0, reply);
  EXPECT_FALSE(backend.ConnectionLost(0));
  // A block begins with an attribute: the loss can show anywhere.
  library.Answer("viSetAttribute TMO", {.status = VI_ERROR_CONN_LOST});
  backend.GP_Time_Out(kTimeOut300ms);
  EXPECT_TRUE(backend.ConnectionLost(0));
  EXPECT_EQ(backend.LibraryProblem(), "USB0::A was unplugged: status BFFF00A6");
  EXPECT_FALSE(backend.ConnectionLost(1)) << "another device";
  backend.GP_End();
  EXPECT_TRUE(backend.ConnectionLost(0)) << "until it is opened again";
  ASSERT_EQ(backend.GP_Init("USBTMC_NAME=USB0::A", true), CommStatus::Success);
  EXPECT_FALSE(backend.ConnectionLost(0));
  EXPECT_EQ(backend.LibraryProblem(), "");
}

}  // namespace
}  // namespace corlune::testing
