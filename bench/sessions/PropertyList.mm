#include "bench/sessions/Peers.h"

#import <Foundation/Foundation.h>

#include "utils/ParameterFormat.h"

namespace Bench
{

namespace
{

NSString* Text(const CByteString& strText)
{
    return [NSString stringWithUTF8String:strText.c_str()];
}

NSNumber* Number(double dValue) { return [NSNumber numberWithDouble:dValue]; }
NSNumber* Number(float fValue) { return [NSNumber numberWithFloat:fValue]; }
NSNumber* Number(bool bValue) { return [NSNumber numberWithBool:bValue]; }
NSNumber* Number(int nValue) { return [NSNumber numberWithInt:nValue]; }
NSNumber* Number(long long nValue) { return [NSNumber numberWithLongLong:nValue]; }
NSNumber* Number(unsigned long long nValue)
{
    return [NSNumber numberWithLongLong:static_cast<long long>(nValue)];
}

id Object(const char* pText) { return [NSString stringWithUTF8String:pText]; }
template <class Value> id Object(Value value) { return Number(value); }

// Names may stand twice in a block, so that a block is a list of names and values.
NSArray* ListOf(const CParameterBlock& block)
{
    NSMutableArray* list = [NSMutableArray array];
    for (const CParameter* pEntry : block.m_vParameters)
    {
        [list addObject:Text(pEntry->m_strName)];
        if (pEntry->m_nType == CParameterBlock::kType)
            [list addObject:ListOf(static_cast<const CParameterBlock&>(*pEntry))];
        else
            ParameterFormat::VisitValue(*pEntry, false,
                                        [list](const auto& parameter)
                                        {
                                            const auto& value = ParameterFormat::ValueOf(parameter);
                                            if constexpr (requires { value.c_str(); })
                                                [list addObject:Text(value)];
                                            else if constexpr (!requires { value.nFileKey; })
                                                [list addObject:Number(value)];
                                            return true;
                                        });
    }
    return list;
}

double Sum(NSArray* list)
{
    double dSum = 0;
    for (NSUInteger i = 0; i < [list count]; ++i)
    {
        id entry = [list objectAtIndex:i];
        if ([entry isKindOfClass:[NSArray class]])
            dSum += Sum(entry);
        else if ([entry isKindOfClass:[NSString class]])
            dSum += static_cast<double>([entry length]);
        else
            dSum += [entry doubleValue];
    }
    return dSum;
}

class CPropertyList : public CPeer
{
  public:
    ~CPropertyList() override
    {
        Free();
        [m_bytes release];
    }
    const char* Name() const override { return "binary plist"; }
    void Take(const CParameterBlock& root) override
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        m_bytes = [Serialize(ListOf(root)) retain];
        [pool release];
    }
    std::size_t GetSize() const override { return [m_bytes length]; }
    void Load() override
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        m_tree = [[NSPropertyListSerialization propertyListWithData:m_bytes
                                                            options:NSPropertyListImmutable
                                                             format:NULL
                                                              error:NULL] retain];
        [pool release];
    }
    void Build(const BuiltShape& shape) override
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSMutableArray* root = [[NSMutableArray alloc] init];
        for (int nTrack = 0; nTrack < shape.nTracks; ++nTrack)
        {
            NSMutableArray* track = [NSMutableArray array];
            AddValues(nTrack, shape,
                      [track](const char* pName, const auto& value)
                      {
                          [track addObject:[NSString stringWithUTF8String:pName]];
                          [track addObject:Object(value)];
                      });
            [root addObject:@"Track"];
            [root addObject:track];
        }
        m_tree = root;
        [pool release];
    }
    void Free() override
    {
        [m_tree release];
        m_tree = nil;
    }
    void Save() override
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        Serialize(m_tree);
        [pool release];
    }
    double Walk() override { return Sum(m_tree); }

  private:
    static NSData* Serialize(id tree)
    {
        return [NSPropertyListSerialization dataWithPropertyList:tree
                                                          format:NSPropertyListBinaryFormat_v1_0
                                                         options:0
                                                           error:NULL];
    }

    NSData* m_bytes = nil;
    NSArray* m_tree = nil;
};

} // namespace

std::unique_ptr<CPeer> MakePropertyList() { return std::make_unique<CPropertyList>(); }

} // namespace Bench
