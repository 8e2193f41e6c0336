#include "tests/ui/window_fixture.h"

#include <cerrno>
#include <filesystem>
#include <utility>

namespace folioweld::testing {

std::string AnsweringDialogs::Next(std::deque<std::string>& answers) {
  if (WhileOpen) WhileOpen();
  if (Closed || answers.empty()) return {};
  std::string answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

bool AnsweringDialogs::ShowBox(const BoxRequest& request) {
  Boxes.push_back(request);
  if (WhileOpen) WhileOpen();
  if (Closed || BoxAnswers.empty()) return false;
  const bool answer = BoxAnswers.front();
  BoxAnswers.pop_front();
  return answer;
}

std::string AnsweringDialogs::AskOpenFile(const FileRequest& request) {
  OpenQuestions.push_back(request);
  return Next(OpenAnswers);
}

std::string AnsweringDialogs::AskSaveFile(const FileRequest& request) {
  SaveQuestions.push_back(request);
  return Next(SaveAnswers);
}

std::string AnsweringDialogs::AskFolder(const FolderRequest& request) {
  FolderQuestions.push_back(request);
  return Next(FolderAnswers);
}

std::int16_t AnsweringDialogs::AskSortOrder(std::int16_t current) {
  SortQuestions.push_back(current);
  if (WhileOpen) WhileOpen();
  return SortAnswer.value_or(current);
}

SystemResult<bool> WindowSystem::PollProcess(Process child) {
  ++Polls;
  const Fault fault = Count("PollProcess");
  if (fault.Error != 0) return SystemError{fault.Error};
  if (child != kViewer) return SystemError{ECHILD};
  return ViewerRuns;
}

SystemError WindowSystem::TerminateProcess(ViewerProcess process) {
  Terminated.push_back(process);
  return SystemError{Count("TerminateProcess").Error};
}

std::string FakeDesktop::FindPdfReader(const std::string& extension) {
  Extensions.push_back(extension);
  return Reader;
}

bool FakeDesktop::LaunchProcess(const std::string& document, ViewerProcess& process) {
  Launched.push_back(document);
  process = WindowSystem::kViewer;
  system_.ViewerRuns = Starts && !EndsAtOnce;
  return Starts;
}

bool FakeDesktop::AskService(const std::string& document) {
  if (IsService) AskedFor.push_back(document);
  return IsService;
}

void FakeDesktop::CloseServiceWindows() {
  ++ServiceWindowsClosed;
}

bool FakeDesktop::CloseThreadWindows(ViewerProcess process) {
  Asked.push_back(process);
  return HasWindows;
}

WindowFixture::WindowFixture() : startFolder_(std::filesystem::current_path().string()) {
  system_.Environment = {{"XDG_CONFIG_HOME", folder_.MakeFolder("config")},
                         {"TMPDIR", folder_.MakeFolder("tmp")}};
}

WindowFixture::~WindowFixture() {
  timers_.clear();
  window_.reset();
  EXPECT_EQ(std::filesystem::current_path().string(), startFolder_) << "the current folder was left changed";
}

void WindowFixture::Open(const std::string& commandLine) {
  window_ = std::make_unique<Folioweld>(
      system_, dialogs_, desktop_,
      ParseArguments(commandLine.empty() ? std::vector<std::string>() : std::vector{commandLine}));
  window_->EndProgram = [this](int status) { ended_ = status; };
  window_->Start();
  ASSERT_TRUE(WaitFor([this] { return window_->WasActivated(); }));
}

std::string WindowFixture::DefaultButton() {
  std::string names;
  for (const char* name : {"cmdOK", "cmdCancel"}) {
    if (Find<QPushButton>(name)->isDefault()) names += name;
  }
  return names;
}

std::string WindowFixture::EnabledButtons() {
  std::string names;
  for (const char* name :
       {"cmdInput1", "CmdClr1", "cmdInput2", "CmdClr2", "PictToggle", "cmdOutput", "CmdClrOut", "cmdOK"}) {
    if (Enabled(name)) names += std::string(names.empty() ? "" : " ") + name;
  }
  return names;
}

std::string WindowFixture::Marks() {
  return Label("txtDoing0") + "," + Label("txtDoing1") + "," + Label("txtDoing2");
}

std::string WindowFixture::Stored(const std::string& setting) {
  SettingsStore settings(system_);
  const std::string text = settings.ReadSetting(setting);
  return settings.LastError() == kSettingsOk ? text : "(not stored)";
}

void WindowFixture::AtEveryTurn(std::function<void()> step) {
  timers_.push_back(std::make_unique<QTimer>());
  QObject::connect(timers_.back().get(), &QTimer::timeout, timers_.back().get(), std::move(step));
  timers_.back()->start(0);
}

std::string WindowFixture::WarnedDocument(const std::string& name) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>")
      .TrailerExtra("/Info 3 0 R");
  return folder_.Write(name, builder.Build());
}

std::string WindowFixture::Document(const std::string& name, int pages) {
  return folder_.Write(name, SimpleDocument(pages, name));
}

void WindowFixture::ChooseAll() {
  FileName(1) = Document("first.pdf");
  FileName(2) = Document("second.pdf");
  FileName(3) = folder_.File("joined.pdf");
  Window().RefreshControls();
}

}  // namespace folioweld::testing
