#include "host/services/common_passwords.h"

#include <string>
#include <unordered_set>

namespace orv {
namespace {

constexpr const char* kWords = R"(
123456789012 1234567890123 12345678901234 123456123456 123123123123 012345678901 102030405060 112233445566
121212121212 111122223333 123321123321 147258369147 159753159753 987654321012 1q2w3e4r5t6y 1q2w3e4r5t6y7u
1qaz2wsx3edc 1qaz2wsx3edc4rfv q1w2e3r4t5y6 qazwsxedcrfv zaq12wsxcde3 qwertyuiop qwertyuiop12 qwertyuiop123
qwertyuiopas qwertyuiop[] asdfghjkl asdfghjkl123 asdfghjklzxc asdfghjkl;' zxcvbnm zxcvbnm12345 zxcvbnmasdfg
qwerty qwerty123456 qwertyqwerty qwerty12345678 qweasdzxc qweasdzxc123 qwerasdfzxcv asdfqwerzxcv mnbvcxz
poiuytrewq lkjhgfdsa azerty azertyuiop password password1234 password12345 password123456 passwordpassword
passw0rd passw0rd1234 p@ssw0rd p@ssw0rd1234 p@ssword p4ssw0rd pa55word pass pass1234 mypassword yourpassword
newpassword thispassword passwd letmein letmeinplease letmeinnow welcome welcometoyou iloveyou iloveyousomuch
iloveyouforever trustno trustnoone sunshine princess football baseball basketball superman batman spiderman
dragon master monkey shadow michael jennifer jordan hunter killer soccer hockey harley ranger buster thomas
robert daniel charlie andrew michelle jessica pepper ashley cookie summer winter spring autumn freedom whatever
computer internet starwars pokemon nintendo playstation minecraft samsung google facebook instagram whatsapp
youtube microsoft windows linux android iphone apple amazon netflix hello helloworld hello123 secret secret123
topsecret changeme changeit changemenow default guest test teste testing testtest testeteste teste123 test1234
admin admin123 admin1234 administrator administrador administracao root toor rootroot system sistema sistemas
user usuario usuarios login logon acesso acessar acessolivre entrar entrada liberado temp temporario temporaria
senha senha123 senha1234 senhasenha minhasenha minhasenhaforte novasenha novasenha123 suasenha senhaforte
senhasegura senhapadrao senhanova senhadificil senhafacil senhamestre senhadoadmin mudar mudarsenha mudar123
mudesenha trocar trocarsenha trocasenha alterar alterarsenha esquecisenha esqueciasenha naoseiasenha naolembro
empresa empresas minhaempresa financeiro financeira financas tesouraria contabil contabilidade caixa banco bancos
cheque cheques conta contas contabancaria dinheiro fluxodecaixa pagamento pagamentos recebimento vendas compras
faturamento estoque producao fabrica industria comercio comercial escritorio gerente gerencia diretor diretoria
presidente chefe patrao secretaria trabalho servico cliente clientes fornecedor fornecedores representante
brasil brasileiro brasileira saopaulo riodejaneiro minasgerais santacatarina parana curitiba florianopolis
joinville blumenau portoalegre belohorizonte salvador recife fortaleza brasilia goiania campinas santos
flamengo corinthians palmeiras saopaulofc santosfc vasco vascodagama botafogo fluminense gremio internacional
cruzeiro atletico atleticomineiro bahia vitoria coritiba athletico chapecoense avai figueirense neymar pele
ronaldo ronaldinho senna ayrtonsenna futebol
jesus jesuscristo jesuseteama jesustesalva deus deusefiel deusebom deusefielsempre deusnocomando deusnoslivre
meudeus amemjesus amem espiritosanto nossasenhora aparecida fe esperanca gratidao
amor amorzinho amoreterno meuamor minhavida meuanjo teamo teamomuito teamoparasempre euteamo euteamomuito
euamovoce saudade saudades felicidade feliz felizes familia minhafamilia meufilho minhafilha meusfilhos
filho filha princesa principe rainha bebe gatinha gatinho linda lindo gostosa gostoso docinho estrela borboleta
cachorro gatos passarinho
maria mariana marina marcia marcos marcelo joao joaopedro joaovitor jose josesilva antonio francisco carlos
paulo pedro lucas luiz luis gabriel rafael rodrigo bruno eduardo felipe fernando fernanda gustavo
leonardo matheus ricardo sandra patricia aline amanda ana anapaula anaclara beatriz bruna camila carolina claudia
cristina daniela debora elaine gabriela isabela juliana julia larissa leticia luciana monica natalia
priscila renata roberta simone tatiana vanessa viviane miguel arthur heitor davi bernardo samuel valentina helena
laura sophia alice manuela
janeiro fevereiro marco abril maio junho julho agosto setembro outubro novembro dezembro segunda terca quarta
quinta sexta sabado domingo verao inverno primavera outono
abcdefgh abcdef abcabcabc abc123abc123 abcd1234abcd abcd1234 a1b2c3d4e5f6 a1b2c3d4 aabbccddeeff
correcthorsebatterystaple abracadabra openseasame abretesesamo
)";

const std::unordered_set<std::string>& Words() {
  static const std::unordered_set<std::string> words = [] {
    std::unordered_set<std::string> all;
    std::string word;
    for (const char* c = kWords; *c != '\0'; ++c) {
      if (*c != ' ' && *c != '\n') {
        word += *c;
      } else if (!word.empty()) {
        all.insert(std::move(word));
        word.clear();
      }
    }
    return all;
  }();
  return words;
}

}  // namespace

bool IsCommonPassword(std::string_view folded) { return Words().contains(std::string(folded)); }

}  // namespace orv
