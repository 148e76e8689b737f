// The program orvcc.
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>

#include "desk/commands/command_line.h"
#include "desk/commands/commands.h"
#include "toolkit/error.h"

namespace {

using namespace orv;
using namespace orv::commands;

// Gives a command the database option, which every command takes. What is typed goes before the environment,
// which is read here: commands share variables, and the library would fill those of commands not called too.
void Database(CLI::App* command, std::string& database) {
  CLI::Option* option = command->add_option(
      "--database", database,
      "Arquivo do banco (embutido) ou servidor:apelido; sem a opção, o que está em ORVCC_DATABASE");
  const char* set = std::getenv("ORVCC_DATABASE");
  if (set != nullptr && *set != '\0') {
    database = set;
  } else {
    option->required();
  }
}

void AddUserCommands(CLI::App& app, User& user) {
  CLI::App* group = app.add_subcommand("user", "Usuários, senhas e direitos");
  group->require_subcommand(1);
  const auto add = [&](const char* name, const char* help, void (*run)(const User&), bool named = true) {
    CLI::App* command = group->add_subcommand(name, help);
    Database(command, user.database);
    if (named) command->add_option("usuario", user.name, "Nome de login")->required();
    command->callback([run, &user] { run(user); });
    return command;
  };
  CLI::App* made = add("add", "Cria um usuário; a senha vem da entrada padrão", UserAdd);
  made->add_flag("--admin", user.admin, "Tem todos os direitos");
  add("password", "Troca a senha, lida da entrada padrão", UserPassword);
  for (CLI::App* command : {add("grant", "Dá direitos em uma tela", UserGrant),
                            add("revoke", "Retira direitos de uma tela", UserRevoke)}) {
    command->add_option("classe", user.screen_class, "Classe da tela, ou *")->required();
    command->add_option("tipos", user.kinds, "A (incluir e alterar), E (excluir), AE, ou *")
        ->default_val("*");
  }
  add("list", "Lista os usuários e seus direitos", UserList, false);
  add("remove", "Remove um usuário", UserRemove);
}

void AddParamCommands(CLI::App& app, Param& param) {
  CLI::App* group = app.add_subcommand("param", "Parâmetros da mesa");
  group->require_subcommand(1);
  const auto add = [&](const char* name, const char* help, void (*run)(const Param&)) {
    CLI::App* command = group->add_subcommand(name, help);
    Database(command, param.database);
    command->add_option("--company", param.company, "Empresa (_001); sem ela, vale para todas");
    command->callback([run, &param] { run(param); });
    return command;
  };
  for (CLI::App* command :
       {add("get", "Mostra um parâmetro", ParamGet), add("set", "Grava um parâmetro", ParamSet)}) {
    command->add_option("grupo", param.group, "Grupo, como FIN")->required();
    command->add_option("numero", param.number, "Número, como 30")->required();
    if (command->get_name() == "set") command->add_option("valor", param.value, "Valor")->required();
  }
  add("list", "Lista os parâmetros", ParamList);
}

void AddLockCommands(CLI::App& app, Lock& lock) {
  CLI::App* group = app.add_subcommand("lock", "Períodos fechados");
  group->require_subcommand(1);
  const auto add = [&](const char* name, const char* help, void (*run)(const Lock&)) {
    CLI::App* command = group->add_subcommand(name, help);
    Database(command, lock.database);
    command->add_option("--company", lock.company, "Empresa")->capture_default_str();
    command->callback([run, &lock] { run(lock); });
    return command;
  };
  for (CLI::App* command :
       {add("set", "Fecha um período", LockSet), add("clear", "Reabre um período", LockClear)}) {
    auto* account = command->add_option("--account", lock.account, "Conta bancária");
    command->add_flag("--cash", lock.cash, "O caixa")->excludes(account);
    if (command->get_name() == "set") {
      command->add_option("--until", lock.until, "Último dia fechado, dd/mm/aaaa ou aaaa-mm-dd")->required();
    }
  }
  add("list", "Lista os períodos fechados", LockList);
}

void AddServeCommands(CLI::App& app, Serve& serve, std::string& id) {
  CLI::App* command = app.add_subcommand("serve", "A mesa no navegador, até SIGTERM ou Ctrl+C");
  Database(command, serve.database);
  command->add_option("--listen", serve.listen, "Endereço e porta")->capture_default_str();
  command->add_option("--certificate", serve.certificate, "Certificado TLS com a sua cadeia, em PEM");
  command->add_option("--key", serve.key, "Chave do certificado, em PEM");
  command->get_option("--certificate")->needs("--key");
  command->get_option("--key")->needs("--certificate");
  command->add_option("--address", serve.address,
                      "Endereço público, atrás de um proxy: https://mesa.exemplo.com");
  command->add_option("--proxy", serve.proxy, "Endereço do proxy, cujo X-Forwarded-For é aceito");
  command->add_option("--log", serve.log, "Arquivo de log; sem ele, a saída de erros");
  command->add_option("--web", serve.web, "Pasta da página; sem ela, a que está com o programa");
  command->add_option("--idle", serve.idle, "Minutos sem uso até a sessão terminar")
      ->check(Between(1, 1440))
      ->capture_default_str();
  command->add_option("--absolute", serve.absolute, "Horas até a sessão terminar, mesmo em uso")
      ->check(Between(1, 168))
      ->capture_default_str();
  command->add_option("--grace", serve.grace, "Minutos em que uma janela sem conexão espera a volta")
      ->check(Between(0, 1440))
      ->capture_default_str();
  command->add_option("--windows", serve.windows, "Janelas de um usuário ao mesmo tempo")
      ->check(Between(1, 100))
      ->capture_default_str();
  command->add_option("--upload", serve.upload, "Tamanho máximo de um arquivo enviado, em MB")
      ->check(Between(1, 512))
      ->capture_default_str();
  command
      ->add_option("--uploads", serve.uploads,
                   "Espaço dos arquivos enviados de um usuário, em MB, até que sejam confirmados")
      ->check(Between(1, 1 << 20))
      ->capture_default_str();
  command
      ->add_option("--connections", serve.connections,
                   "Conexões de um endereço ao mesmo tempo; sem login, um oitavo delas")
      ->check(Between(8, 1024))
      ->capture_default_str();
  command->add_flag("--hsts-subdomains", serve.subdomains,
                    "TLS exigido também dos nomes abaixo do da mesa (HSTS includeSubDomains)");
  command->add_option("--today", serve.today, "O dia de hoje da mesa, aaaa-mm-dd");
  command->callback([&serve] { RunServe(serve); });

  CLI::App* group = app.add_subcommand("session", "Quem está na mesa que está em uso")->require_subcommand(1);
  CLI::App* list = group->add_subcommand("list", "Lista as sessões");
  list->callback([&serve] { SessionList(serve.data); });
  CLI::App* end = group->add_subcommand("end", "Encerra uma sessão, com todas as suas janelas");
  end->add_option("id", id, "Código da sessão, como em \"session list\"")->required();
  end->callback([&serve, &id] { SessionEnd(serve.data, id); });
  for (CLI::App* one : {command, list, end}) {
    one->add_option("--data", serve.data, "Pasta de dados da mesa");
  }
}

int Run(int argc, char** argv) {
  CLI::App app{"orvCC: a mesa de tesouraria"};
  SpeakPortuguese(app);
  app.require_subcommand(1);
  int status = 0;

  Init init;
  CLI::App* command = app.add_subcommand("init", "Cria um banco; não toca em um que já existe");
  Database(command, init.database);
  command->add_flag("--demo", init.demo, "Com empresas de demonstração: dois anos de movimento");
  command->add_option("--scale", init.scale, "Quantas vezes maior é a demonstração")->check(Between(1, 250));
  command->add_option("--companies", init.companies, "Empresas, como _001,_002")->capture_default_str();
  command->add_option("--date", init.date, "Dia em que a demonstração termina, aaaa-mm-dd");
  command->callback([&] { RunInit(init); });

  DemoFiles files;
  CLI::App* demo =
      app.add_subcommand("demo", "O que acompanha uma empresa de demonstração")->require_subcommand(1);
  command = demo->add_subcommand(
      "files", "Grava arquivos de operadoras de cartão que conferem com a empresa; não substitui nenhum");
  Database(command, files.database);
  command->add_option("pasta", files.folder, "Pasta em que os arquivos são gravados")->required();
  command->add_option("--company", files.company, "Empresa")->capture_default_str();
  command->callback([&] { WriteFiles(files); });

  Drive drive;
  command =
      app.add_subcommand("drive", "A porta da mesa na entrada e na saída padrão, um objeto JSON por linha");
  Database(command, drive.database);
  command->add_option("--user", drive.user, "Usuário")->required();
  command->add_option("--company", drive.company, "Empresa")->capture_default_str();
  command->add_option("--today", drive.today, "O dia de hoje da mesa, aaaa-mm-dd");
  command->add_option("--data", drive.data, "Pasta dos arquivos dos usuários");
  command->callback([&] { status = RunDrive(drive); });

  FavouriteReport report;
  command = app.add_subcommand(
      "report",
      "Grava um relatório favorito. Termina com 0, ou 1: falhou, 2: nome ou formato desconhecido, 3: sem "
      "linhas, 4: o arquivo não pôde ser gravado, 5: sem permissão para a tela");
  Database(command, report.door.database);
  CLI::Option* name = command->add_option("nome", report.name, "Nome do favorito");
  command->add_option("--user", report.door.user, "Usuário")->required();
  command->add_option("--company", report.door.company, "Empresa")->capture_default_str();
  command->add_option("--today", report.door.today,
                      "O dia de hoje da mesa, aaaa-mm-dd, do qual contam os períodos relativos");
  command->add_option("--data", report.door.data, "Pasta dos arquivos dos usuários");
  command->add_option("--format", report.format, "pdf, html, txt, csv ou xlsx")->capture_default_str();
  CLI::Option* out = command->add_option("--out", report.out, "Arquivo; um que existe não é substituído");
  CLI::Option* list = command->add_flag("--list", report.list, "Lista os favoritos do usuário e os de todos");
  name->needs(out);
  out->needs(name)->excludes(list);
  command->callback([&] {
    if (!report.list && report.name.empty()) throw CLI::RequiredError("nome");
    status = RunReport(report);
  });

  Serve serve;
  std::string session;
  AddServeCommands(app, serve, session);

  User user;
  AddUserCommands(app, user);
  Param param;
  AddParamCommands(app, param);
  Lock lock;
  AddLockCommands(app, lock);

  std::string database, first, second, company;
  CLI::App* holiday = app.add_subcommand("holiday", "Feriados da empresa")->require_subcommand(1);
  command = holiday->add_subcommand("add", "Acrescenta um feriado");
  Database(command, database);
  command->add_option("data", first, "dd/mm/aaaa ou aaaa-mm-dd")->required();
  command->add_option("nome", second, "Nome do feriado")->required();
  command->add_option("--company", company, "Empresa; sem ela, vale para todas");
  command->callback([&] { HolidayAdd(database, first, second, company); });

  CLI::App* companies = app.add_subcommand("company", "Empresas")->require_subcommand(1);
  command = companies->add_subcommand("add", "Cria mais uma empresa no banco");
  Database(command, database);
  command->add_option("sufixo", first, "Sufixo das tabelas, como _003")->required();
  command->add_option("nome", second, "Nome da empresa")->required();
  command->callback([&] { CompanyAdd(database, first, second); });

  command = app.add_subcommand("check", "Procura contradições nos dados; não muda nada");
  Database(command, database);
  command->callback([&] { status = Check(database) == 0 ? 0 : 2; });

  command = app.add_subcommand("upgrade", "Traz o banco para a versão deste programa");
  Database(command, database);
  command->callback([&] { Upgrade(database); });

  command = app.add_subcommand("backup", "Copia o banco em uso para um arquivo");
  Database(command, database);
  command->add_option("arquivo", first, "Arquivo da cópia; não pode existir")->required();
  command->callback([&] { RunBackup(database, first); });

  command = app.add_subcommand("restore", "Faz um banco novo de uma cópia; não toca em um que já existe");
  Database(command, database);
  command->add_option("arquivo", first, "Arquivo da cópia")->required();
  command->callback([&] { RunRestore(database, first); });

  int count = 20;
  command = app.add_subcommand("audit", "Mostra as últimas linhas de auditoria");
  Database(command, database);
  command->add_option("--last", count, "Quantas linhas")->check(Between(1, 100000))->capture_default_str();
  command->callback([&] { AuditTail(database, count); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "orvcc: " << PortugueseError(app, e) << "\nA ajuda: orvcc --help, orvcc COMANDO --help.\n";
    return e.get_exit_code();
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "orvcc: " << e.what() << "\n";
    return 1;
  }
}
