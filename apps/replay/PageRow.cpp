#include "apps/replay/PageRow.h"

#include "apps/replay/PageText.h"
#include "apps/support/recording/ScriptCalls.h"

#include <algorithm>
#include <cmath>

namespace Tarvane::Replay
{
namespace
{

constexpr int kWidth = 1060;
constexpr int kRowHeight = 34;
constexpr int kTimeEdge = 100;
constexpr int kArrowAt = 25;
constexpr int kLabelAt = 17;
constexpr std::size_t kLongestLabel = 58;

// A text that fills the memory of who looks at it helps nobody.
constexpr std::size_t kLongestDetail = 100'000;

int X(Lane lane)
{
    switch (lane)
    {
    case Lane::PlugIn:
        return 150;
    case Lane::View:
        return 580;
    default:
        return 1010;
    }
}

std::string Number(int nNumber)
{
    return std::to_string(nNumber);
}

std::string Element(const char* szClass, int nX1, int nY1, int nX2, int nY2)
{
    return std::string("<line class=\"") + szClass + "\" x1=\"" + Number(nX1) + "\" y1=\"" +
           Number(nY1) + "\" x2=\"" + Number(nX2) + "\" y2=\"" + Number(nY2) + "\"/>";
}

std::string Words(const char* szClass, int nX, int nY, const std::string& strText)
{
    return std::string("<text class=\"") + szClass + "\" x=\"" + Number(nX) + "\" y=\"" +
           Number(nY) + "\">" + Escaped(strText) + "</text>";
}

std::string Begin(int nHeight, bool fOpen)
{
    std::string strSvg = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " +
                         Number(kWidth) + " " + Number(nHeight) + "\" width=\"" + Number(kWidth) +
                         "\" height=\"" + Number(nHeight) + "\">";
    for (const Lane lane : {Lane::PlugIn, Lane::View, Lane::Server})
        strSvg += Element("lane", X(lane), 0, X(lane), nHeight);
    if (fOpen)
        strSvg += "<rect class=\"open\" x=\"" + Number(X(Lane::Server) - 4) +
                  "\" y=\"0\" width=\"8\" height=\"" + Number(nHeight) + "\"/>";
    return strSvg;
}

std::string Head(int nX, bool fRightwards, bool fError)
{
    const int nBack = fRightwards ? nX - 10 : nX + 10;
    return std::string("<polygon class=\"") + (fError ? "bad" : "good") + "\" points=\"" +
           Number(nX) + "," + Number(kArrowAt) + " " + Number(nBack) + "," + Number(kArrowAt - 5) +
           " " + Number(nBack) + "," + Number(kArrowAt + 5) + "\"/>";
}

std::string Detail(std::string strText)
{
    if (strText.size() > kLongestDetail)
        strText = strText.substr(0, kLongestDetail) + "\n... and " +
                  std::to_string(strText.size() - kLongestDetail) + " bytes more";
    return strText.empty() || strText.back() == '\n' ? strText : strText + "\n";
}

std::string DetailsOf(const Parameters& parameters)
{
    std::string strText;
    for (const auto& [nKeyword, parameter] : parameters)
        strText += "'" + CodeText(nKeyword) + "' of type '" + CodeText(parameter.nType) + "', " +
                   std::to_string(parameter.strBytes.size()) + " bytes\n" +
                   Detail(parameter.Text());
    return strText;
}

std::string TextOf(const Parameters& parameters, AEKeyword nKeyword)
{
    const auto found = parameters.find(nKeyword);
    return found == parameters.end() ? std::string() : found->second.Text();
}

void FillEvent(PageRow& row, const Exchange& exchange)
{
    row.from = Lane::View;
    row.to = Lane::Server;
    row.strLabel = ShortName(exchange);
    row.strDetails = "Event " + std::to_string(exchange.nNumber) + ", '" +
                     CodeText(exchange.nClass) + "' '" + CodeText(exchange.nId) + "' to '" +
                     CodeText(exchange.nTarget) + "'" +
                     (exchange.fEnded ? "" : ", without a reply in the recording") + "\n" +
                     DetailsOf(exchange.event);
    row.fError = !exchange.fEnded;
}

void FillReply(PageRow& row, const Exchange& exchange)
{
    const std::string strResult = TextOf(exchange.reply, 'Rslt');
    const std::string strError = TextOf(exchange.reply, 'Errr');
    row.from = Lane::Server;
    row.to = Lane::View;
    row.fAnswer = true;
    row.fError = exchange.nStatus != noErr || !strError.empty();
    row.strLabel =
        std::to_string(exchange.nNumber) + ": " + MillisecondsText(exchange.nTook) + ", ";
    if (exchange.nStatus == errAETimeout)
        row.strLabel += "no answer (status " + std::to_string(exchange.nStatus) + ")";
    else if (exchange.nStatus != noErr)
        row.strLabel += "status " + std::to_string(exchange.nStatus);
    else if (!strError.empty())
        row.strLabel += "'Errr' " + strError;
    else
        row.strLabel += strResult.empty() ? "nothing printed" : strResult;
    row.strDetails = "Reply to event " + std::to_string(exchange.nNumber) + ", status " +
                     std::to_string(exchange.nStatus) + ", after " +
                     MillisecondsText(exchange.nTook) + "\n" + DetailsOf(exchange.reply);
}

std::string ValueText(const RecordedJson& field)
{
    if (field.is_object())
        return field.at("text").get<std::string>() + " (bytes " +
               field.at("hex").get<std::string>() + ")";
    return field.is_string() ? field.get<std::string>() : field.dump();
}

// "name value" for each field, with what stands between them.
std::string FieldsText(const RecordedJson& json, const char* szBetween)
{
    std::string strText;
    if (!json.contains("fields"))
        return strText;
    for (const auto& [strName, field] : json.at("fields").items())
        strText += (strText.empty() ? "" : szBetween) + strName + " " + ValueText(field);
    return strText;
}

std::string PropertyDetails(const Line& line, long long nStatus)
{
    const RecordedJson& json = line.json;
    std::string strText = line.strKind + " of " +
                          std::to_string(json.at("property").get<long long>()) + " " +
                          json.at("name").get<std::string>() + ", element " +
                          std::to_string(json.at("element").get<long long>()) + ", thread " +
                          json.at("thread").get<std::string>();
    if (line.strKind != "notification")
        strText += ", status " + std::to_string(nStatus);
    if (json.contains("count"))
        strText += "\nas before, " + std::to_string(json.at("count").get<long long>()) +
                   " times until " + SecondsText(json.at("last").get<long long>());
    if (json.contains("hex"))
        strText += "\nbytes " + json.at("hex").get<std::string>();
    return Detail(strText) + Detail(FieldsText(json, "\n"));
}

void FillProperty(PageRow& row, const Line& line)
{
    const RecordedJson& json = line.json;
    const bool fWrite = line.strKind == "write";
    const long long nStatus =
        line.strKind == "notification" ? noErr : json.at("status").get<long long>();
    row.from = fWrite ? Lane::View : Lane::PlugIn;
    row.to = fWrite ? Lane::PlugIn : Lane::View;
    row.fAnswer = line.strKind == "read";
    row.fSignal = line.strKind == "notification";
    row.fError = nStatus != noErr;
    std::string strName = json.at("name").get<std::string>();
    const std::size_t nUnderscore = strName.find('_');
    if (nUnderscore != std::string::npos)
        strName.erase(0, nUnderscore + 1);
    row.strLabel = std::to_string(json.at("property").get<long long>()) + " " + strName;
    if (json.contains("count"))
        row.strLabel += ", " + std::to_string(json.at("count").get<long long>()) + " times";
    if (row.fError)
        row.strLabel += ": status " + std::to_string(nStatus);
    else if (json.contains("fields"))
        row.strLabel += ": " + FieldsText(json, ", ");
    row.strDetails = PropertyDetails(line, nStatus);
}

} // namespace

std::string ShortName(const Exchange& exchange)
{
    return std::to_string(exchange.nNumber) + ": " +
           Shortened(WhatItAsks(exchange.Script()), kLongestLabel);
}

PageRow RowOf(const Line& line, const std::map<long long, const Exchange*>& exchanges)
{
    PageRow row;
    row.strTime = SecondsText(line.nTime);
    if (line.strKind == "event")
        FillEvent(row, *exchanges.at(line.json.at("number").get<long long>()));
    else if (line.strKind == "reply")
        FillReply(row, *exchanges.at(line.json.at("number").get<long long>()));
    else
        FillProperty(row, line);
    row.strLabel = Shortened(row.strLabel, kLongestLabel);
    return row;
}

std::string DrawRow(const PageRow& row)
{
    const int nFrom = X(row.from), nTo = X(row.to);
    const bool fRightwards = nFrom < nTo;
    std::string strClass = row.fError ? "bad" : "good";
    strClass += row.fAnswer ? " answer" : row.fSignal ? " signal" : "";
    return Begin(kRowHeight, row.fOpen) + Words("time", kTimeEdge, kLabelAt, row.strTime) +
           Element(strClass.c_str(), nFrom, kArrowAt, fRightwards ? nTo - 9 : nTo + 9, kArrowAt) +
           Head(nTo, fRightwards, row.fError) +
           Words(row.fError ? "label wrong" : "label", (nFrom + nTo) / 2, kLabelAt,
                 (row.fError ? "\xE2\x9C\x98 " : "") + row.strLabel) +
           "</svg>";
}

std::string DrawHeads()
{
    std::string strSvg = Begin(30, false);
    for (const auto& [lane, szName] :
         {std::pair{Lane::PlugIn, "plug-in"}, std::pair{Lane::View, "view"},
          std::pair{Lane::Server, "server"}})
        strSvg += "<rect class=\"head\" x=\"" + Number(X(lane) - 45) +
                  "\" y=\"2\" width=\"90\" height=\"24\" rx=\"4\"/>" +
                  Words("name", X(lane), 19, szName);
    return strSvg + "</svg>";
}

std::string DrawGap(long long nMicroseconds, bool fOpen)
{
    constexpr double kLowest = 12, kHighest = 90, kEachDoubling = 8;
    const double dDoublings = std::log2(std::max(1.0, static_cast<double>(nMicroseconds) / 50'000));
    const int nHeight = static_cast<int>(std::min(kHighest, kLowest + kEachDoubling * dDoublings));
    return Begin(nHeight, fOpen) +
           Words("gap", kTimeEdge, nHeight / 2 + 4, "+ " + SecondsText(nMicroseconds)) + "</svg>";
}

} // namespace Tarvane::Replay
