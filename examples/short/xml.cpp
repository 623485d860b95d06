#include "Short.h"

#include <platform/Com.h>

// A word list written and read as XML.
int main()
{
    CoInitialize(nullptr); // on each thread that works with documents
    const CString strFile = Beside("words.xml");
    bool bRead = false;
    {
        CKXXmlDomDocument doc;
        CKXXmlDomElement words = doc.CreateElement("words", nullptr);
        doc.SetDocumentElement(words);
        for (const char* pszText : {"gradual", "harbour"}) {
            CKXXmlDomElement word = doc.CreateElement("word", nullptr);
            word.SetAttributeInt32("level", 3);
            word.AppendChild(doc, "text", CString(pszText), true);
            word.AppendChild(doc, "score", 0.75, true, 0.0);
            words.AppendChild(word);
        }
        doc.Save(strFile);

        CKXXmlDomDocument again;
        if (again.Load(strFile)) {
            CKXXmlDomElement root = again.GetDocumentElement();
            for (const CKXXmlDomElement& word : root.GetChilds("word")) {
                CString strText;
                double dScore = 0;
                word.GetChild("text", strText, true);
                word.GetChild("score", dScore, false, 0.0);
                std::printf("%s: %.2f\n", strText.GetString(), dScore);
            }
            bRead = root.GetChild("word[@level = 3][2]/text").GetText() == "harbour";
        }
    }
    CoUninitialize(); // when no document or element is left
    return bRead ? 0 : 1;
}
